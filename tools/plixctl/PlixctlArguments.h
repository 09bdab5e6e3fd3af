#pragma once

#include <optional>
#include <string>
#include <vector>

// The command line of plixctl: one command, its operands and the options,
// which may stand before or after the command ("--" ends the options).
class PlixctlArguments
{
public:
    enum class Command {
        none,
        list,
        get,
        set,
        verify,
        monitor,
        status,
        check,
        confirm,
        cancel,
        pending,
        exportValues,
        importValues
    };
    // How "set" writes: one persistent transaction, one transaction kept in
    // memory only, or the transient setters one by one.
    enum class SetMode { persistent, noPersist, transient };

    PlixctlArguments(int argc, char** argv);

    // Empty when the command line is usable; otherwise what is wrong with it.
    const std::string& error() const { return mError; }
    bool helpRequested() const { return mHelp; }
    Command command() const { return mCommand; }
    const std::vector<std::string>& operands() const { return mOperands; }
    bool json() const { return mJson; }
    // Empty for the system bus.
    const std::string& address() const { return mAddress; }
    SetMode setMode() const { return mSetMode; }
    // The confirmation window of "set" and "import" in seconds; none when
    // the change is kept without one.
    std::optional<unsigned> confirmSeconds() const { return mConfirmSeconds; }

    static std::string usage();

private:
    bool takeOption(const std::string& argument, int& index, int argc, char** argv);
    void setSetMode(SetMode mode);
    void setConfirmSeconds(const std::string& text);
    void checkConfirm();
    void check();

    std::string mError;
    bool mHelp = false;
    Command mCommand = Command::none;
    std::vector<std::string> mOperands;
    bool mJson = false;
    std::string mAddress;
    SetMode mSetMode = SetMode::persistent;
    bool mSetModeGiven = false;
    std::optional<unsigned> mConfirmSeconds;
};
