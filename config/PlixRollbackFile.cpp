#include "PlixRollbackFile.h"

#include "PlixDurableFile.h"

#include <nlohmann/json.hpp>

#include <climits>
#include <cstdlib>
#include <fstream>

namespace {

constexpr mode_t ownerOnly = 0600;

std::string besideStore(const std::string& storePath)
{
    if (storePath.empty()) {
        return std::string();
    }
    char resolved[PATH_MAX];
    const std::string file =
        realpath(storePath.c_str(), resolved) != nullptr ? resolved : storePath;
    const std::size_t slash = file.rfind('/');
    const std::string directory = slash == std::string::npos ? "." : file.substr(0, slash);
    return directory + "/" + PlixRollbackFile::fileName;
}

nlohmann::json contentJson(const PlixVariant& content)
{
    switch (content.getDataType()) {
    case PlixVariant::BOOL:
        return content.asBool();
    case PlixVariant::INT:
        return content.asInt();
    case PlixVariant::DOUBLE:
        return content.asDouble();
    default:
        return content.getAsString();
    }
}

bool kindFits(const nlohmann::json& text, int dataType)
{
    switch (dataType) {
    case PlixVariant::BOOL:
        return text.is_boolean();
    case PlixVariant::INT:
        return text.is_number_integer();
    case PlixVariant::DOUBLE:
        return text.is_number();
    default:
        return text.is_string();
    }
}

// A password comes back from its stored form, never hashed again.
PlixVariant contentOf(const nlohmann::json& text, int dataType, const PlixValue& value)
{
    switch (dataType) {
    case PlixVariant::BOOL:
        return PlixVariant(text.get<bool>());
    case PlixVariant::INT:
        return PlixVariant(text.get<int>());
    case PlixVariant::DOUBLE:
        return PlixVariant(text.get<double>());
    case PlixVariant::PASSWORD:
        return PlixVariant(PlixPassword(text.get<std::string>(), value.getValueType(), false));
    default:
        return PlixVariant(text.get<std::string>());
    }
}

bool entryOf(const nlohmann::json& item, const PlixValueTable& values, PlixRollbackEntry& entry)
{
    const auto value = values.find(item.at("id").get<std::string>());
    if (value == values.end()) {
        return false;
    }
    const int dataType = item.at("type").get<int>();
    const nlohmann::json& text = item.at("value");
    if (dataType != value->second.getValue().getDataType() || dataType == PlixVariant::NONE ||
        !kindFits(text, dataType)) {
        return false;
    }
    entry.xmlId = value->first;
    entry.content = contentOf(text, dataType, value->second);
    return true;
}

} // namespace

PlixRollbackFile::PlixRollbackFile(const std::string& storePath) : filePath(besideStore(storePath))
{
}

bool PlixRollbackFile::write(const std::vector<PlixRollbackEntry>& entries, std::int64_t deadline,
                             std::string& error) const
{
    if (filePath.empty()) {
        return true;
    }
    nlohmann::json items = nlohmann::json::array();
    for (const PlixRollbackEntry& entry : entries) {
        items.push_back({{"id", entry.xmlId},
                         {"type", entry.content.getDataType()},
                         {"value", contentJson(entry.content)}});
    }
    const nlohmann::json document = {{"deadline", deadline}, {"values", items}};
    return PlixDurableFile(filePath, ownerOnly).replace(document.dump(1) + "\n", error);
}

bool PlixRollbackFile::remove(std::string& error) const
{
    return filePath.empty() || PlixDurableFile(filePath).remove(error);
}

// Anything the library refuses to convert counts as corrupt as well.
PlixRollbackFile::Reading PlixRollbackFile::read(const PlixValueTable& values,
                                                 std::vector<PlixRollbackEntry>& entries) const
{
    std::ifstream in(filePath);
    if (filePath.empty() || !in) {
        return Reading::absent;
    }
    std::vector<PlixRollbackEntry> read;
    try {
        const nlohmann::json document = nlohmann::json::parse(in);
        document.at("deadline").get<std::int64_t>();
        for (const nlohmann::json& item : document.at("values")) {
            PlixRollbackEntry entry;
            if (!entryOf(item, values, entry)) {
                return Reading::corrupt;
            }
            read.push_back(std::move(entry));
        }
    } catch (const nlohmann::json::exception&) {
        return Reading::corrupt;
    }
    entries = std::move(read);
    return Reading::read;
}

bool PlixRollbackFile::moveAside(std::string& error) const
{
    return PlixDurableFile(filePath).moveAside(corruptSuffix, error);
}

void PlixRollbackFile::removeLeftover() const
{
    if (!filePath.empty()) {
        PlixDurableFile(filePath).removeLeftover();
    }
}
