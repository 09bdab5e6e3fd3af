#include "PlixctlArguments.h"

#include "PlixctlStatus.h"

#include <map>

namespace {

const std::map<std::string, PlixctlArguments::Command>& commands()
{
    static const std::map<std::string, PlixctlArguments::Command> names{
        {"list", PlixctlArguments::Command::list},
        {"get", PlixctlArguments::Command::get},
        {"set", PlixctlArguments::Command::set},
        {"verify", PlixctlArguments::Command::verify},
        {"monitor", PlixctlArguments::Command::monitor},
        {"status", PlixctlArguments::Command::status},
        {"check", PlixctlArguments::Command::check},
        {"confirm", PlixctlArguments::Command::confirm},
        {"cancel", PlixctlArguments::Command::cancel},
        {"pending", PlixctlArguments::Command::pending},
        {"export", PlixctlArguments::Command::exportValues},
        {"import", PlixctlArguments::Command::importValues},
    };
    return names;
}

bool startsWith(const std::string& text, const std::string& prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

} // namespace

PlixctlArguments::PlixctlArguments(int argc, char** argv)
{
    bool optionsEnded = false;
    for (int i = 1; i < argc && mError.empty(); ++i) {
        const std::string argument = argv[i];
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (optionsEnded || !takeOption(argument, i, argc, argv)) {
            if (mCommand == Command::none) {
                const auto found = commands().find(argument);
                mCommand = found != commands().end() ? found->second : Command::none;
                if (found == commands().end()) {
                    mError = "unknown command '" + argument + "'";
                }
            } else {
                mOperands.push_back(argument);
            }
        }
    }
    if (mError.empty() && !mHelp) {
        check();
    }
}

// Answers false for an argument that is no option; a lone "-" and "-5" are
// operands (a password read from standard input, a negative number).
bool PlixctlArguments::takeOption(const std::string& argument, int& index, int argc, char** argv)
{
    if (argument == "--help" || argument == "-h") {
        mHelp = true;
    } else if (argument == "--json") {
        mJson = true;
    } else if (argument == "--transient") {
        setSetMode(SetMode::transient);
    } else if (argument == "--no-persist") {
        setSetMode(SetMode::noPersist);
    } else if (startsWith(argument, "--confirm=")) {
        setConfirmSeconds(argument.substr(std::string("--confirm=").size()));
    } else if (argument == "--confirm") {
        if (index + 1 >= argc) {
            mError = "--confirm needs a number of SECONDS";
        } else {
            setConfirmSeconds(argv[++index]);
        }
    } else if (startsWith(argument, "--address=")) {
        mAddress = argument.substr(std::string("--address=").size());
    } else if (argument == "--address") {
        if (index + 1 >= argc) {
            mError = "--address needs a bus address";
        } else {
            mAddress = argv[++index];
        }
    } else if (startsWith(argument, "--")) {
        mError = "unknown option '" + argument + "'";
    } else {
        return false;
    }
    return true;
}

void PlixctlArguments::setSetMode(SetMode mode)
{
    if (mSetModeGiven && mSetMode != mode) {
        mError = "--transient and --no-persist exclude each other";
    }
    mSetMode = mode;
    mSetModeGiven = true;
}

// Whether the window is allowed at all is the service's to say; here it must
// only be a number.
void PlixctlArguments::setConfirmSeconds(const std::string& text)
{
    const bool digits = !text.empty() && text.size() <= 9 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    if (!digits) {
        mError = "--confirm needs a number of SECONDS, not '" + text + "'";
        return;
    }
    mConfirmSeconds = static_cast<unsigned>(std::stoul(text));
}

void PlixctlArguments::checkConfirm()
{
    if (mCommand != Command::set && mCommand != Command::importValues) {
        mError = "--confirm belongs to the commands set and import";
    } else if (mSetModeGiven) {
        mError = "--confirm keeps a stored change: not with --transient or --no-persist";
    }
}

void PlixctlArguments::check()
{
    if (mConfirmSeconds && mCommand != Command::none) {
        checkConfirm();
    }
    if (!mError.empty()) {
        return;
    }
    const std::size_t count = mOperands.size();
    if (mCommand == Command::none) {
        mError = "no command given";
    } else if (mSetModeGiven && mCommand != Command::set) {
        mError = "--transient and --no-persist belong to the command set";
    } else if ((mCommand == Command::list || mCommand == Command::monitor ||
                mCommand == Command::status || mCommand == Command::pending) &&
               count != 0) {
        mError = "this command takes no operands";
    } else if (mCommand == Command::get && count == 0) {
        mError = "get needs at least one XML-ID";
    } else if (mCommand == Command::check && count > 1) {
        mError = "check takes at most one FILE";
    } else if ((mCommand == Command::confirm || mCommand == Command::cancel) && count != 1) {
        mError = "this command needs the TOKEN that set --confirm printed";
    } else if (mCommand == Command::exportValues && count > 1) {
        mError = "export takes at most one FILE";
    } else if (mCommand == Command::importValues && count != 1) {
        mError = "import needs one FILE";
    } else if (mCommand == Command::verify && count != 2) {
        mError = "verify needs an XML-ID and a value";
    } else if (mCommand == Command::set) {
        if (count == 0) {
            mError = "set needs at least one ID=VALUE";
        }
        for (const std::string& operand : mOperands) {
            if (operand.find('=') == std::string::npos || operand.front() == '=') {
                mError = "'" + operand + "' is not of the form ID=VALUE";
            }
        }
    }
}

std::string PlixctlArguments::usage()
{
    return "Usage: plixctl [--json] [--address ADDRESS] COMMAND [OPERANDS]\n"
           "\n"
           "Reads and changes the values of the configuration service com.orvanta.plix.\n"
           "\n"
           "Commands:\n"
           "  list                      the declared values: XML-ID, type, store file, access\n"
           "  get ID...                 the current value of each XML-ID (ID=VALUE)\n"
           "  set [--transient | --no-persist | --confirm SECONDS] ID=VALUE...\n"
           "                            sets the values in one transaction, stored in the\n"
           "                            JSON files by default; --no-persist keeps the\n"
           "                            transaction in memory only; --transient uses the\n"
           "                            transient setters one by one (applied at once,\n"
           "                            never stored); --confirm keeps the change only if\n"
           "                            it is confirmed within SECONDS (10 to 3600) and\n"
           "                            prints the TOKEN and the deadline\n"
           "  confirm TOKEN             keeps the change that awaits its confirmation\n"
           "  cancel TOKEN              puts that change's old values back at once\n"
           "  pending                   whether a change awaits its confirmation, for how\n"
           "                            long and which XML-IDs it covers\n"
           "  export [FILE]             every readable value as one JSON document\n"
           "                            (standard output without FILE)\n"
           "  import [--confirm SECONDS] FILE\n"
           "                            sets the values of an exported document in one\n"
           "                            stored transaction\n"
           "  verify ID VALUE           does VALUE equal the stored value? (passwords too)\n"
           "  monitor                   prints each change (ID=VALUE) until interrupted\n"
           "  status                    the store files that could not be written, each\n"
           "                            with its error; the service retries them\n"
           "  check [FILE]              checks the configuration FILE (default\n"
           "                            /etc/orvanta/plix/plix_config.xml) and its JSON\n"
           "                            files without the service, one problem a line;\n"
           "                            exits 0 when it is sound, 1 when the service would\n"
           "                            not start on it, 2 when it would start with problems\n"
           "\n"
           "A VALUE is read as the value's declared type: int, double (or float),\n"
           "bool (true, false, 1, 0), anything else as text. For a password value a\n"
           "VALUE of \"-\" is read from standard input, one line, so that it appears in\n"
           "no command line. Password values are never shown: get answers code 11 for\n"
           "them and monitor shows \"(password)\".\n"
           "\n"
           "Options:\n"
           "  --json             output for scripts, in JSON\n"
           "  --address ADDRESS  use the bus at ADDRESS instead of the system bus\n"
           "  -h, --help         this text\n"
           "\n" +
           PlixctlStatus::table() +
           "\n"
           "On failure one line on standard error names the service's code and its\n"
           "meaning.\n";
}
