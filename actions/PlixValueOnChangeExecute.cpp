#include "PlixValueOnChangeExecute.h"

#include "PlixLog.h"
#include "PlixShellCommand.h"
#include "PlixValue.h"

PlixValueOnChangeExecute::PlixValueOnChangeExecute(PlixValue& value)
    : PlixValueOnChangeHandler(value)
{
}

std::string PlixValueOnChangeExecute::refusal() const
{
    return PlixShellCommand::refusalOf(command, {value.getName()});
}

unsigned PlixValueOnChangeExecute::onChange()
{
    PlixShellCommand shellCommand(command);
    shellCommand.expand(value.getName(), value.getValue().getAsString());
    return shellCommand.run(LOG_NOTICE,
                            "PlixValueOnChangeExecute executed following command successfully: %s",
                            "PlixValueOnChangeExecute failed with following command: %s");
}
