#pragma once

#include "PlixctlBusClient.h"
#include "PlixctlOutput.h"

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <string>

// "plixctl export" and "plixctl import": the whole configuration as one JSON
// document, {"values": {"XML-ID": value, ...}, "not_exported": [...]}, each
// value with its own JSON kind. Password values are never readable, so they
// are only named in "not_exported"; an import sets the document's values in
// one stored transaction, validated as a whole, all or nothing.
class PlixctlBackup
{
public:
    PlixctlBackup(PlixctlBusClient& client, PlixctlOutput& output);

    // To standard output when file is empty.
    int exportTo(const std::string& file);
    int importFrom(const std::string& file, std::optional<unsigned> confirmSeconds);

private:
    // The readable values, read in one call so that they form one state of
    // the store; when that call fails, one by one, and each that cannot be
    // read joins the passwords in notExported.
    bool readAll(const std::vector<PlixctlValueInfo>& declared, nlohmann::ordered_json& values,
                 nlohmann::ordered_json& notExported);
    // A read-only value is refused unless the document holds the value it
    // has: an export names it too, and a restore leaves it as it is.
    bool unchanged(const std::string& id, const nlohmann::ordered_json& value);
    int refusal(const nlohmann::ordered_json& values,
                const std::map<std::string, PlixctlValueInfo>& known,
                std::vector<std::string>& skipped);

    PlixctlBusClient& mClient;
    PlixctlOutput& mOutput;
};
