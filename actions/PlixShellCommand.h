#pragma once

#include <string>

// A command declared in the configuration, filled with values and run through
// the system shell. Values come from clients, so each one is inserted in a
// form the shell reads as one plain word: a client can never run a command
// of its own through a value.
class PlixShellCommand
{
public:
    explicit PlixShellCommand(std::string command);

    // Replaces every "%<name>" by the shell-safe form of text. The search
    // resumes behind the inserted text, so a value is never expanded again.
    void expand(const std::string& name, const std::string& text);

    const std::string& text() const { return command; }

    // Runs the command. A shell status above 0 logs failedFormat and gives
    // 13; anything else (a failed fork too) logs doneFormat and gives 0.
    // Both formats take the command text in their one "%s".
    unsigned run(int priority, const char* doneFormat, const char* failedFormat) const;

    // The text as it stands when it is made of harmless characters only,
    // otherwise quoted for the shell with every "%" closed off by an empty
    // quoted pair, so that no later placeholder search can match inside it.
    static std::string shellSafe(const std::string& text);

private:
    std::string command;
};
