#include "PlixDataSetOnChangeExecute.h"

#include "PlixDataSet.h"
#include "PlixLog.h"
#include "PlixShellCommand.h"
#include "PlixValue.h"

#include <vector>

PlixDataSetOnChangeExecute::PlixDataSetOnChangeExecute(PlixDataSet& dataSet)
    : PlixDatasetOnChangeHandler(dataSet)
{
}

std::string PlixDataSetOnChangeExecute::refusal() const
{
    std::vector<std::string> names;
    for (const PlixValue* member : dataSet.getValues()) {
        names.push_back(member->getName());
    }
    return PlixShellCommand::refusalOf(command, names);
}

unsigned PlixDataSetOnChangeExecute::onChange()
{
    // Placeholders are plain text searches in declaration order: with values
    // ip and ipv6, "%ipv6" is taken by ip first.
    PlixShellCommand shellCommand(command);
    for (const PlixValue* member : dataSet.getValues()) {
        shellCommand.expand(member->getName(), member->getValue().getAsString());
    }
    return shellCommand.run(LOG_WARNING,
                            "DataSetOnChangeExecute executed following command successfully: %s",
                            "DataSetOnChangeExecute failed with following command: %s");
}
