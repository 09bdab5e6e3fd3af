#include "PlixVariant.h"

#include <cmath>
#include <cstdio>
#include <locale>
#include <sstream>
#include <utility>

namespace {

// Numbers are written the way a default-formatted stream writes them, in the
// classic locale so that no grouping or decimal comma ever reaches a client.
template <typename Number>
std::string streamText(Number number)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << number;
    return stream.str();
}

// Doubles closer than this count as the same setting.
const double doubleTolerance = 0.001;

std::unique_ptr<PlixPassword> copyOf(const std::unique_ptr<PlixPassword>& password)
{
    return password ? std::make_unique<PlixPassword>(*password) : nullptr;
}

} // namespace

PlixVariant::PlixVariant() = default;

PlixVariant::PlixVariant(std::string value) : stringContent(std::move(value)), typeTag(STRING)
{
}

PlixVariant::PlixVariant(const char* value) : stringContent(value), typeTag(STRING)
{
}

PlixVariant::PlixVariant(bool value) : typeTag(BOOL), boolContent(value)
{
}

PlixVariant::PlixVariant(int value) : intContent(value), typeTag(INT)
{
}

PlixVariant::PlixVariant(double value) : doubleContent(value), typeTag(DOUBLE)
{
}

PlixVariant::PlixVariant(PlixPassword value)
    : passwordContent(std::make_unique<PlixPassword>(std::move(value))), typeTag(PASSWORD)
{
}

PlixVariant::PlixVariant(const PlixVariant& other)
    : stringContent(other.stringContent), doubleContent(other.doubleContent),
      passwordContent(copyOf(other.passwordContent)), intContent(other.intContent),
      typeTag(other.typeTag), boolContent(other.boolContent)
{
}

PlixVariant& PlixVariant::operator=(const PlixVariant& other)
{
    if (this != &other) {
        PlixVariant copy(other);
        *this = std::move(copy);
    }
    return *this;
}

PlixPassword& PlixVariant::password()
{
    if (!passwordContent) {
        passwordContent = std::make_unique<PlixPassword>();
    }
    return *passwordContent;
}

const PlixPassword& PlixVariant::passwordOrDefault() const
{
    static const PlixPassword none;
    return passwordContent ? *passwordContent : none;
}

std::string PlixVariant::asString() const
{
    return stringContent;
}

int PlixVariant::asInt() const
{
    return intContent;
}

double PlixVariant::asDouble() const
{
    return doubleContent;
}

bool PlixVariant::asBool() const
{
    return boolContent;
}

PlixPassword PlixVariant::asPlixPassword() const
{
    return passwordOrDefault();
}

int PlixVariant::getDataType() const
{
    return typeTag;
}

void PlixVariant::takeTypeIfNone(DataType type)
{
    // A variant that already has a type keeps it: only an untyped one is
    // given its type by the first content written into it.
    if (dataType() == NONE) {
        typeTag = static_cast<std::uint8_t>(type);
    }
}

void PlixVariant::setValueString(std::string value)
{
    stringContent = std::move(value);
    takeTypeIfNone(STRING);
}

void PlixVariant::setValueBool(bool value)
{
    boolContent = value;
    takeTypeIfNone(BOOL);
}

void PlixVariant::setValueInt(int value)
{
    intContent = value;
    takeTypeIfNone(INT);
}

void PlixVariant::setValueDouble(double value)
{
    doubleContent = value;
    takeTypeIfNone(DOUBLE);
}

void PlixVariant::setValuePassword(PlixPassword value)
{
    PlixPassword& content = password();
    content.hashedPassword = std::move(value.hashedPassword);
    content.digestName = std::move(value.digestName);
    content.iterations = value.iterations;
    content.plainTextLength = value.plainTextLength;
    takeTypeIfNone(PASSWORD);
}

std::string PlixVariant::getAsString() const
{
    switch (dataType()) {
    case BOOL:
        return boolContent ? "true" : "false";
    case STRING:
        return stringContent;
    case INT:
        return streamText(intContent);
    case DOUBLE:
        return streamText(doubleContent);
    case PASSWORD:
        return passwordOrDefault().getHashedPassword();
    case NONE:
        break;
    }
    // An untyped variant has no text; no caller asks for one in normal use.
    return std::string();
}

void PlixVariant::print() const
{
    // Unlike getAsString(), a bool is printed as a digit.
    const std::string text = dataType() == BOOL ? streamText(boolContent) : getAsString();
    std::fwrite(text.data(), 1, text.size(), stdout);
}

bool PlixVariant::operator==(const PlixVariant& other) const
{
    // A password is compared by checking the other side's text against it,
    // so a plain candidate and a stored form both work.
    if (dataType() == PASSWORD) {
        return passwordOrDefault() == other.getAsString();
    }
    if (other.dataType() == PASSWORD) {
        return other.passwordOrDefault() == getAsString();
    }
    if (dataType() != other.dataType()) {
        return false;
    }
    switch (dataType()) {
    case BOOL:
        return boolContent == other.boolContent;
    case STRING:
        return stringContent == other.stringContent;
    case INT:
        return intContent == other.intContent;
    case DOUBLE:
        return std::fabs(doubleContent - other.doubleContent) < doubleTolerance;
    case PASSWORD:
    case NONE:
        break;
    }
    return false;
}

bool PlixVariant::operator!=(const PlixVariant& other) const
{
    return !(*this == other);
}
