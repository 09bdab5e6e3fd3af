#include "PlixConnectionpriorityValidator.h"

#include "PlixDataSetMember.h"

PlixConnectionpriorityValidator::PlixConnectionpriorityValidator(PlixDataSet& dataSet)
    : PlixDatasetValidator(dataSet)
{
}

unsigned PlixConnectionpriorityValidator::validate()
{
    const bool options[] = {
        PlixDataSetMember::readOrExit(
            dataSet, "disconnectexistconnections",
            "Critical exception in PlixTolvarixPasswordValidator::validate "
            "disconnectexistconnections Read: %s")
            .asBool(),
        PlixDataSetMember::readOrExit(
            dataSet, "sharedsessions",
            "Critical exception in PlixTolvarixPasswordValidator::validate sharedsessions Read: %s")
            .asBool(),
        PlixDataSetMember::readOrExit(
            dataSet, "refuseconcurrentconnections",
            "Critical exception in PlixTolvarixPasswordValidator::validate "
            "refuseconcurrentconnections Read: %s")
            .asBool(),
    };
    int chosen = 0;
    for (bool option : options) {
        chosen += option ? 1 : 0;
    }
    return chosen == 1 ? 0 : 207;
}
