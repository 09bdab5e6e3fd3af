#pragma once

#include "PlixDatasetOnChangeHandler.h"

#include <string>

// Runs a declared shell command in which "%<value name>" stands for the
// current content of each value of the data set.
class PlixDataSetOnChangeExecute : public PlixDatasetOnChangeHandler
{
public:
    explicit PlixDataSetOnChangeExecute(PlixDataSet& dataSet);

    void setCommand(std::string command) { this->command = std::move(command); }
    const std::string& getCommand() const { return command; }

    // Why the command refuses every set of values (see
    // PlixShellCommand::refusal), empty when it takes them.
    std::string refusal() const;

    unsigned onChange() override;

private:
    std::string command;
};
