#include "PlixctlArguments.h"
#include "Plix.h"
#include "PlixctlBackup.h"
#include "PlixctlBusClient.h"
#include "PlixctlCheck.h"
#include "PlixctlCommands.h"
#include "PlixctlMonitor.h"
#include "PlixctlOutput.h"
#include "PlixctlStatus.h"

#include <iostream>

namespace {

int runCommand(const PlixctlArguments& arguments, PlixctlBusClient& client, PlixctlOutput& output)
{
    using Command = PlixctlArguments::Command;
    const auto& operands = arguments.operands();
    PlixctlCommands commands(client, output);
    switch (arguments.command()) {
    case Command::list:
        return commands.list();
    case Command::get:
        return commands.get(operands);
    case Command::set:
        return commands.set(operands, arguments.setMode(), arguments.confirmSeconds());
    case Command::verify:
        return commands.verify(operands[0], operands[1]);
    case Command::monitor:
        return PlixctlMonitor(client, output).run();
    case Command::status:
        return commands.status();
    case Command::confirm:
        return commands.confirm(operands[0]);
    case Command::cancel:
        return commands.cancel(operands[0]);
    case Command::pending:
        return commands.pending();
    case Command::exportValues:
        return PlixctlBackup(client, output).exportTo(operands.empty() ? "" : operands[0]);
    case Command::importValues:
        return PlixctlBackup(client, output).importFrom(operands[0], arguments.confirmSeconds());
    case Command::check:
    case Command::none:
        break;
    }
    return PlixctlStatus::usageError;
}

} // namespace

int main(int argc, char** argv)
{
    const PlixctlArguments arguments(argc, argv);
    PlixctlOutput output(arguments.json(), std::cout, std::cerr);
    if (arguments.helpRequested()) {
        std::cout << PlixctlArguments::usage();
        return PlixctlStatus::success;
    }
    if (!arguments.error().empty()) {
        return output.usageError(arguments.error());
    }
    if (arguments.command() == PlixctlArguments::Command::check) {
        const auto& operands = arguments.operands();
        return PlixctlCheck::run(operands.empty() ? Plix::defaultConfigPath : operands[0],
                                 arguments.json(), std::cout);
    }
    PlixctlBusClient client;
    if (!client.connect(arguments.address())) {
        return output.busFailure(client.error());
    }
    return runCommand(arguments, client, output);
}
