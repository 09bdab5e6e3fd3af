#include "PlixValue.h"

#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixLog.h"
#include "PlixValueValidator.h"
#include "PlixNumber.h"

#include <cmath>
#include <cstdlib>
#include <deque>
#include <unordered_map>
#include <utility>

namespace {

// The code of a value that is not allowed: of another type than the value's
// content, or a number that the store cannot hold.
const unsigned notAllowed = 200;

// JSON has no text for NaN or an infinity: the store would hold null in its
// place, and the value would have no content after the next start.
bool storable(const PlixVariant& v)
{
    return v.getDataType() != PlixVariant::DOUBLE || std::isfinite(v.asDouble());
}

// Every distinct type text once, by number. Made while loading, on the one
// thread that owns the model, and never freed, as the values that use it live
// for the whole run.
class TypeTexts
{
public:
    // The empty text of a value whose type is not read yet.
    static constexpr std::uint32_t none = 0;

    TypeTexts() { numberOf(""); }

    std::uint32_t numberOf(std::string text)
    {
        // Room first, so that a text is never numbered without its slot.
        texts.reserve(texts.size() + 1);
        const auto [entry, added] =
            numbers.try_emplace(std::move(text), static_cast<std::uint32_t>(texts.size()));
        if (added) {
            texts.push_back(&entry->first);
        }
        return entry->second;
    }

    const std::string& textOf(std::uint32_t number) const { return *texts[number]; }

private:
    std::unordered_map<std::string, std::uint32_t> numbers;
    std::vector<const std::string*> texts;
};

TypeTexts& typeTexts()
{
    static TypeTexts* const texts = new TypeTexts;
    return *texts;
}

// A content is never freed: a value that took a new default leaves its old
// content to the values linked to it. One deque holds them all, so a content
// costs its own size and neither a block header nor a reference count. The
// price is that a content given up stays: defaults are given while loading,
// once for each value and store file, so only a re-read of the stores (which
// the service does not do) adds to them. Used on the one thread that owns the
// model.
PlixVariant* newContent(PlixVariant v)
{
    static std::deque<PlixVariant>* const contents = new std::deque<PlixVariant>;
    contents->push_back(std::move(v));
    return &contents->back();
}

} // namespace

PlixValue::PlixValue(std::string name, PlixDataSet& dataSet)
    : name(std::move(name)), dataSet(dataSet), valueType(TypeTexts::none)
{
}

// The value type is left out on purpose: the loader inserts the copy into the
// value table before it has read the type, and sets it on the copy.
PlixValue::PlixValue(const PlixValue& other)
    : name(other.name), jpath(other.jpath), dataSet(other.dataSet),
      attachments(other.attachments ? std::make_unique<Attachments>(*other.attachments) : nullptr),
      currentValue(other.currentValue), jsonNode(other.jsonNode), valueType(TypeTexts::none),
      oldValueValid(other.oldValueValid), isInJson(other.isInJson), linked(other.linked)
{
}

PlixValue::Attachments& PlixValue::attached()
{
    if (!attachments) {
        attachments = std::make_unique<Attachments>();
    }
    return *attachments;
}

PlixValue::Slots& PlixValue::slotsInUse()
{
    if (!slots) {
        slots = std::make_unique<Slots>();
    }
    return *slots;
}

void PlixValue::setValueType(std::string type)
{
    valueType = typeTexts().numberOf(std::move(type));
}

const std::string& PlixValue::typeText() const
{
    return typeTexts().textOf(valueType);
}

PlixValueValidator* PlixValue::getValueValidator() const
{
    return attachments ? attachments->validator : nullptr;
}

std::vector<PlixValueOnChangeHandler*> PlixValue::getOnChangeHandlers() const
{
    return attachments ? attachments->onChangeHandlers : std::vector<PlixValueOnChangeHandler*>();
}

PlixValue* PlixValue::getLinkedPlixValueObject() const
{
    return attachments ? attachments->linkedValue : nullptr;
}

void PlixValue::setValueInJsonWillBeReadFromPreviousPlixValue(PlixValue* earlier)
{
    attached().linkedValue = earlier;
    linked = true;
}

PlixVariant PlixValue::getValue() const
{
    return currentValue ? *currentValue : PlixVariant();
}

void PlixValue::setValuePtr(PlixVariant* content)
{
    currentValue = content;
    linked = true;
}

PlixVariant PlixValue::getWantedSetValue() const
{
    return slots ? slots->wanted : PlixVariant();
}

unsigned PlixValue::setWantedSetValue(PlixVariant v)
{
    PlixVariant& wanted = slotsInUse().wanted;
    wanted = std::move(v);
    oldValueValid = false;
    if (wanted.getDataType() != getValue().getDataType()) {
        plixLog(LOG_WARNING, "Datatype doesnt match the one from %s", name.c_str());
        return notAllowed;
    }
    if (!storable(wanted)) {
        plixLog(LOG_WARNING, "Validation failed: value for %s/%s not a finite number!",
                dataSet.getName().c_str(), name.c_str());
        return notAllowed;
    }
    if (PlixValueValidator* validator = getValueValidator()) {
        const unsigned result = validator->validate();
        if (result != 0) {
            return result;
        }
    }
    dataSet.setVerify();
    return 0;
}

void PlixValue::writeCurrent(const PlixVariant& v)
{
    // Written through the shared content, so a linked value sees it too.
    if (currentValue) {
        *currentValue = v;
    } else {
        currentValue = newContent(v);
    }
}

void PlixValue::setValue(PlixVariant v)
{
    slotsInUse().old = getValue();
    oldValueValid = true;
    writeCurrent(v);
}

void PlixValue::setBackToOldValue()
{
    // A copy made while a transaction was open has the flag but not the
    // slot, and so writes back a content with no type.
    if (oldValueValid) {
        writeCurrent(slots ? slots->old : PlixVariant());
    }
    oldValueValid = false;
}

void PlixValue::setDefaultValue(PlixVariant v)
{
    oldValueValid = false;
    // A new content, not a write into the old one: a value linked to this
    // one keeps the content they shared.
    currentValue = newContent(std::move(v));
    plixTrace("default mvalue %s\n", currentValue->getAsString().c_str());
}

void PlixValue::setXML_Default_value(std::string text)
{
    isInJson = false;
    const std::string& type = typeText();
    if (type == "string") {
        setDefaultValue(PlixVariant(text));
    } else if (type == "int") {
        setDefaultValue(PlixVariant(plixStrtoInt(text.c_str())));
    } else if (type == "bool") {
        setDefaultValue(PlixVariant(text == "true"));
    } else if (type == "double" || type == "float") {
        setDefaultValue(PlixVariant(std::strtod(text.c_str(), nullptr)));
    } else if (type.find("password") != std::string::npos) {
        setDefaultValue(PlixVariant(PlixPassword(text, type, true)));
    }
    // Any other type has no conversion: the value stays without content.
}

void PlixValue::changeJsonNode()
{
    plixTrace("change node\n");
    // Values with a default have no node; the engine does not call this for
    // them, and a value without a node has nothing to write back.
    if (jsonNode == nullptr) {
        return;
    }
    const PlixVariant content = getValue();
    const std::string& type = typeText();
    if (jsonNode->IsString()) {
        jsonNode->AsValue().Set(content.getAsString());
    } else if (jsonNode->IsNumber()) {
        if (type == "int") {
            jsonNode->AsValue().Set(content.asInt());
        } else if (type == "double" || type == "float") {
            jsonNode->AsValue().Set(content.asDouble());
        }
    } else if (jsonNode->IsBool() && type == "bool") {
        jsonNode->AsValue().Set(content.asBool());
    }
    // The file is rewritten even when the node kept its text, so that the
    // store always reflects a commit.
    if (dataSet.getFile() != nullptr) {
        dataSet.getFile()->setReWrite();
    }
}
