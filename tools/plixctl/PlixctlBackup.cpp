#include "PlixctlBackup.h"

#include "PlixctlCommands.h"
#include "PlixctlStatus.h"
#include "PlixctlValueText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {
// The service's codes for an undeclared XML-ID and a read-only value.
constexpr int undeclaredCode = 9;
constexpr int readOnlyCode = 15;

void addValues(GVariant* read, nlohmann::ordered_json& values)
{
    GVariantIter iter;
    g_variant_iter_init(&iter, read);
    const gchar* id = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(&iter, "{&sv}", &id, &value)) {
        values[id] = PlixctlValueText::toJson(value);
        g_variant_unref(value);
    }
}

bool readFile(const std::string& file, std::string& text, std::string& error)
{
    std::ifstream in(file);
    std::ostringstream content;
    content << in.rdbuf();
    if (!in) {
        error = std::strerror(errno);
        return false;
    }
    text = content.str();
    return true;
}
} // namespace

PlixctlBackup::PlixctlBackup(PlixctlBusClient& client, PlixctlOutput& output)
    : mClient(client), mOutput(output)
{
}

int PlixctlBackup::exportTo(const std::string& file)
{
    const auto declared = mClient.listValues();
    auto values = nlohmann::ordered_json::object();
    auto notExported = nlohmann::ordered_json::array();
    if (!declared || !readAll(*declared, values, notExported)) {
        return mOutput.busFailure(mClient.error());
    }
    const std::string text =
        nlohmann::ordered_json{{"values", values}, {"not_exported", notExported}}.dump(4);
    if (file.empty()) {
        mOutput.document(text);
        return PlixctlStatus::success;
    }
    std::ofstream out(file);
    out << text << "\n";
    out.close();
    if (!out) {
        return mOutput.fileFailure(file, std::strerror(errno));
    }
    return PlixctlStatus::success;
}

bool PlixctlBackup::readAll(const std::vector<PlixctlValueInfo>& declared,
                            nlohmann::ordered_json& values, nlohmann::ordered_json& notExported)
{
    std::vector<std::string> readable;
    for (const PlixctlValueInfo& value : declared) {
        if (PlixctlValueText::isPassword(value.type)) {
            notExported.push_back(value.id);
        } else {
            readable.push_back(value.id);
        }
    }
    const auto all = mClient.getValues(readable);
    if (!all) {
        return false;
    }
    if (all->first == 0) {
        addValues(all->second.get(), values);
        return true;
    }
    for (const std::string& id : readable) {
        const auto one = mClient.getValues({id});
        if (!one) {
            return false;
        }
        if (one->first == 0) {
            addValues(one->second.get(), values);
        } else {
            notExported.push_back(id);
        }
    }
    return true;
}

int PlixctlBackup::importFrom(const std::string& file, std::optional<unsigned> confirmSeconds)
{
    std::string text;
    std::string error;
    if (!readFile(file, text, error)) {
        return mOutput.fileFailure(file, error);
    }
    // In the document's order, so that the values are set and named as
    // the document lists them.
    const nlohmann::ordered_json document = nlohmann::ordered_json::parse(text, nullptr, false);
    if (!document.is_object() || !document.contains("values") || !document["values"].is_object()) {
        return mOutput.invalidValue("", file + ": not an exported document with \"values\"");
    }
    const auto declared = mClient.listValues();
    if (!declared) {
        return mOutput.busFailure(mClient.error());
    }
    std::map<std::string, PlixctlValueInfo> known;
    for (const PlixctlValueInfo& value : *declared) {
        known.emplace(value.id, value);
    }
    std::vector<std::string> skipped;
    if (const int refused = refusal(document["values"], known, skipped)) {
        return refused;
    }
    std::vector<PlixctlCommands::Change> changes;
    int status = PlixctlStatus::success;
    for (const auto& [id, value] : document["values"].items()) {
        std::string problem;
        GVariant* variant = std::find(skipped.begin(), skipped.end(), id) != skipped.end()
                                ? nullptr
                                : PlixctlValueText::fromJson(known.at(id).type, value, &problem);
        if (!problem.empty() && status == PlixctlStatus::success) {
            status = mOutput.invalidValue(id, problem);
        }
        if (variant != nullptr) {
            changes.push_back({id, g_variant_ref_sink(variant)});
        }
    }
    if (status == PlixctlStatus::success) {
        status = PlixctlCommands(mClient, mOutput).store(changes, confirmSeconds);
    }
    for (const auto& change : changes) {
        g_variant_unref(change.value);
    }
    return status;
}

// Every refused value is named before anything is sent; the exit status is
// the first one's.
int PlixctlBackup::refusal(const nlohmann::ordered_json& values,
                           const std::map<std::string, PlixctlValueInfo>& known,
                           std::vector<std::string>& skipped)
{
    int status = PlixctlStatus::success;
    for (const auto& [id, value] : values.items()) {
        const auto found = known.find(id);
        int code = 0;
        if (found == known.end()) {
            code = undeclaredCode;
        } else if (found->second.readOnly && unchanged(id, value)) {
            skipped.push_back(id);
        } else if (found->second.readOnly) {
            code = readOnlyCode;
        }
        if (code != 0) {
            const int refused = mOutput.failure(code, id);
            status = status == PlixctlStatus::success ? refused : status;
        }
    }
    return status;
}

bool PlixctlBackup::unchanged(const std::string& id, const nlohmann::ordered_json& value)
{
    const auto reply = mClient.getValues({id});
    if (!reply || reply->first != 0) {
        return false;
    }
    GVariant* current = g_variant_lookup_value(reply->second.get(), id.c_str(), nullptr);
    const bool same = current != nullptr && PlixctlValueText::toJson(current) == value;
    if (current != nullptr) {
        g_variant_unref(current);
    }
    return same;
}
