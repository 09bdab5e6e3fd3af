#include "PlixctlValueChecks.h"

#include "PlixDataSet.h"
#include "PlixDatasetValidator.h"
#include "PlixFile.h"
#include "PlixLog.h"
#include "PlixValue.h"
#include "PlixctlCheckExit.h"
#include "PlixctlCheckReport.h"

#include <algorithm>
#include <string>

namespace {

const char* const noContent = "every read of it answers 11 and every set 200";

bool knownType(const std::string& type)
{
    return type == "string" || type == "int" || type == "bool" || type == "double" ||
           type == "float" || type.find("password") != std::string::npos;
}

bool hasContent(const PlixValue& value)
{
    return value.getValue().getDataType() != PlixVariant::NONE;
}

} // namespace

void PlixctlValueChecks::run(const std::vector<PlixDataSet*>& dataSets)
{
    for (PlixDataSet* dataSet : dataSets) {
        std::vector<const PlixValue*> seen;
        for (PlixValue* value : dataSet->getValues()) {
            if (!report.unread(*value) &&
                std::find(seen.begin(), seen.end(), value) == seen.end()) {
                seen.push_back(value);
                checkValue(*value);
            }
        }
        checkDataSet(*dataSet);
    }
}

void PlixctlValueChecks::checkValue(PlixValue& value)
{
    report.atValue(value);
    checkContent(value);
    checkLink(value);
    checkPassword(value);
    checkValidator(value);
}

void PlixctlValueChecks::checkContent(const PlixValue& value)
{
    const std::string type = value.getValueType();
    const std::string clause =
        hasContent(value) ? "" : std::string(": it has no content, ") + noContent;
    if (!knownType(type)) {
        report.file("the type \"" + type + "\" is not one the service knows" + clause);
    } else if (!hasContent(value) && value.getDataSet().getFile() == nullptr && value.inJson()) {
        report.file("its data set names no store file" + clause);
    } else if (!hasContent(value) && value.inJson()) {
        report.file("the kind of its node in the store file does not fit the type \"" + type +
                    "\"" + clause);
    } else if (!hasContent(value)) {
        report.file("its default was not converted by the type (a default written before the "
                    "type is converted by no type)" +
                    clause);
    }
}

void PlixctlValueChecks::checkLink(const PlixValue& value)
{
    const PlixValue* earlier = value.getLinkedPlixValueObject();
    if (!value.valueInJsonWillBeReadFromPreviousPlixValue() || earlier == nullptr ||
        earlier->getValueType() == value.getValueType()) {
        return;
    }
    report.file("it shares the jpath \"" + value.getJPath() + "\" with " +
                earlier->getDataSet().getName() + "/" + earlier->getName() + " of type \"" +
                earlier->getValueType() + "\", but is of type \"" + value.getValueType() + "\"");
}

void PlixctlValueChecks::checkPassword(const PlixValue& value)
{
    const PlixVariant content = value.getValue();
    if (content.getDataType() == PlixVariant::PASSWORD && !content.asPlixPassword().holdsSalt()) {
        report.file("the stored password form is too short to hold its 60-character salt: "
                    "no password verifies against it");
    }
}

void PlixctlValueChecks::checkValidator(PlixValue& value)
{
    if (value.getValueValidator() == nullptr || !hasContent(value)) {
        return;
    }
    report.discardLogged();
    const unsigned result = value.setWantedSetValue(value.getValue());
    if (result != 0) {
        report.file("the stored value is refused by its validator (code " + std::to_string(result) +
                    ")");
    }
    report.discardLogged();
}

// A data-set validator that misses a member ends the service at the first
// commit that reaches it; here that end is caught and reported.
void PlixctlValueChecks::checkDataSet(PlixDataSet& dataSet)
{
    for (PlixDatasetValidator* validator : dataSet.getDataSetValidators()) {
        report.atObject(validator, dataSet.getName());
        report.discardLogged();
        unsigned result = 0;
        try {
            result = validator->validate();
        } catch (const PlixctlCheckExit& exit) {
            report.logged(LOG_WARNING, "the first commit that checks this data set ends the "
                                       "service with status " +
                                           std::to_string(exit.status));
            result = 1;
        }
        if (result != 0) {
            report.file("the stored members are refused by the data set's validator (code " +
                        std::to_string(result) + ")");
        }
        report.discardLogged();
    }
}
