#include "PlixTolvarixPasswordValidator.h"

#include "PlixDataSetMember.h"

PlixTolvarixPasswordValidator::PlixTolvarixPasswordValidator(PlixDataSet& dataSet)
    : PlixDatasetValidator(dataSet)
{
}

bool PlixTolvarixPasswordValidator::passwordIsEmpty(const char* name,
                                                    const char* failureFormat) const
{
    return PlixDataSetMember::readOrExit(dataSet, name, failureFormat)
        .asPlixPassword()
        .getHashedPassword()
        .empty();
}

unsigned PlixTolvarixPasswordValidator::validate()
{
    const bool emptyAllowed =
        PlixDataSetMember::readOrExit(
            dataSet, "emptypasswords",
            "Critical exception in PlixTolvarixPasswordValidator::validate emptypasswords Read: %s")
            .asBool();
    // A missing second access-control password is reported with the first
    // one's line: the lines are kept as the service has always logged them.
    const bool secondEmpty = passwordIsEmpty(
        "accesscontrolPassword2", "Critical exception in PlixTolvarixPasswordValidator::validate "
                                  "accesscontrolPassword1 Read: %s");
    const bool firstEmpty = passwordIsEmpty(
        "accesscontrolPassword1", "Critical exception in PlixTolvarixPasswordValidator::validate "
                                  "accesscontrolPassword1 Read: %s");
    const bool forcedWriteEmpty =
        passwordIsEmpty("forcedwriteaccessPassword",
                        "Critical exception in PlixTolvarixPasswordValidator::validate "
                        "forcedwriteaccessPassword Read: %s");
    const bool forcedWriteEnabled =
        PlixDataSetMember::readOrExit(
            dataSet, "enablePassword",
            "Critical exception in PlixTolvarixPasswordValidator::validate enablepassword Read: %s")
            .asBool();

    if (emptyAllowed) {
        return 0;
    }
    if (firstEmpty || secondEmpty) {
        return 206;
    }
    return (forcedWriteEnabled && forcedWriteEmpty) ? 206 : 0;
}
