#include "PlixDataSetPortValidator.h"

#include "PlixDataSetMember.h"

PlixDataSetPortValidator::PlixDataSetPortValidator(PlixDataSet& dataSet)
    : PlixDatasetValidator(dataSet)
{
}

// The fatal lines name the network action: they are kept as the service has
// always logged them.
unsigned PlixDataSetPortValidator::validate()
{
    const int mainPort =
        PlixDataSetMember::readOrExit(
            dataSet, "mainport",
            "Critical exception in PlixDataSetOnChangeSysconfigNetwork::validate mainport Read: %s")
            .asInt();
    // The display port takes no part in the rule, but a port data set
    // without it is a broken configuration all the same.
    PlixDataSetMember::readOrExit(
        dataSet, "displayport",
        "Critical exception in PlixDataSetOnChangeSysconfigNetwork::validate displayport Read: %s");
    const int httpPort =
        PlixDataSetMember::readOrExit(
            dataSet, "httpport",
            "Critical exception in PlixDataSetOnChangeSysconfigNetwork::validate httpport Read: %s")
            .asInt();
    return mainPort == httpPort ? 203 : 0;
}
