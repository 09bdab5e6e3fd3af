#pragma once

#include "PlixValueOnChangeHandler.h"

#include <string>

// Runs a declared shell command in which "%<value name>" stands for the
// value's new content.
class PlixValueOnChangeExecute : public PlixValueOnChangeHandler
{
public:
    explicit PlixValueOnChangeExecute(PlixValue& value);

    void setCommand(std::string command) { this->command = std::move(command); }
    const std::string& getCommand() const { return command; }

    // Why the command refuses every value (see PlixShellCommand::refusal),
    // empty when it takes them.
    std::string refusal() const;

    unsigned onChange() override;

private:
    std::string command;
};
