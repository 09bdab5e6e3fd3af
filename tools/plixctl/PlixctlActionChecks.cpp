#include "PlixctlActionChecks.h"

#include "PlixDataSet.h"
#include "PlixDataSetOnChangeExecute.h"
#include "PlixFile.h"
#include "PlixValue.h"
#include "PlixValueOnChangeExecute.h"
#include "PlixValueOnChangeWriteToFile.h"
#include "PlixctlCheckReport.h"

#include <glib.h>
#include <sys/stat.h>

#include <algorithm>

namespace {

const char* const readOnlyAction =
    "a change action on a value of a read-only store file: every set of the value is "
    "refused (15), so the action runs only at start-up with -s";

// The name a placeholder at the "%" at position seems to mean, to name it in
// a message: the letters, digits and underscores after the "%".
std::string placeholderAt(const std::string& command, std::size_t position)
{
    std::size_t end = position + 1;
    while (end < command.size() && (g_ascii_isalnum(command[end]) || command[end] == '_')) {
        ++end;
    }
    return command.substr(position, end - position);
}

bool namesOneOf(const std::string& command, std::size_t position,
                const std::vector<std::string>& names)
{
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return !name.empty() && command.compare(position + 1, name.size(), name) == 0;
    });
}

} // namespace

void PlixctlActionChecks::run(const std::vector<PlixDataSet*>& dataSets)
{
    for (const PlixDataSet* dataSet : dataSets) {
        const PlixFile* store = dataSet->getFile();
        const bool readOnly = store != nullptr && store->getType() == "read_only";
        std::vector<const PlixValue*> seen;
        for (const PlixValue* value : dataSet->getValues()) {
            if (std::find(seen.begin(), seen.end(), value) == seen.end()) {
                seen.push_back(value);
                checkValueActions(*value, readOnly);
            }
        }
        checkDataSetActions(*dataSet, readOnly);
    }
}

void PlixctlActionChecks::checkValueActions(const PlixValue& value, bool readOnly)
{
    const std::string xmlId = value.getDataSet().getName() + "/" + value.getName();
    for (const PlixValueOnChangeHandler* handler : value.getOnChangeHandlers()) {
        report.atObject(handler, xmlId);
        if (readOnly) {
            report.file(readOnlyAction);
        }
        if (const auto* execute = dynamic_cast<const PlixValueOnChangeExecute*>(handler)) {
            checkPlaceholders(execute->getCommand(), {value.getName()},
                              "it fills in %" + value.getName() + " only");
        }
        if (const auto* write = dynamic_cast<const PlixValueOnChangeWriteToFile*>(handler)) {
            checkDirectory(write->getPathToFile());
        }
    }
}

void PlixctlActionChecks::checkDataSetActions(const PlixDataSet& dataSet, bool readOnly)
{
    std::vector<std::string> names;
    for (const PlixValue* member : dataSet.getValues()) {
        names.push_back(member->getName());
    }
    for (const PlixDatasetOnChangeHandler* handler : dataSet.getDatasetOnChangeHandlers()) {
        report.atObject(handler, dataSet.getName());
        if (readOnly) {
            report.file(readOnlyAction);
        }
        if (const auto* execute = dynamic_cast<const PlixDataSetOnChangeExecute*>(handler)) {
            checkPlaceholders(execute->getCommand(), names, "it names no member of the data set");
        }
    }
}

// A "%" followed by nothing that could be a name is a plain percent sign.
void PlixctlActionChecks::checkPlaceholders(const std::string& command,
                                            const std::vector<std::string>& names,
                                            const std::string& filled)
{
    for (std::size_t position = command.find('%'); position != std::string::npos;
         position = command.find('%', position + 1)) {
        const std::string placeholder = placeholderAt(command, position);
        if (placeholder.size() > 1 && !namesOneOf(command, position, names)) {
            report.file("the Execute placeholder \"" + placeholder +
                        "\" is never filled in: " + filled);
        }
    }
}

void PlixctlActionChecks::checkDirectory(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::string directory =
        slash == std::string::npos ? "." : (slash == 0 ? "/" : path.substr(0, slash));
    struct stat status
    {
    };
    if (stat(directory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        report.file("the directory \"" + directory + "\" of the WriteToFile file \"" + path +
                    "\" does not exist: the action cannot write the file");
    }
}
