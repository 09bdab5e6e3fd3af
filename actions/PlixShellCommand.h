#pragma once

#include <string>
#include <vector>

// A command declared in the configuration, filled with values and run through
// the system shell. Values come from clients, so each one is inserted in the
// form that the shell reads, where its placeholder stands, as exactly the
// value's text: a client can never run a command of its own through a value.
// A placeholder that stands where no such form exists refuses the command.
class PlixShellCommand
{
public:
    explicit PlixShellCommand(std::string command);

    // Replaces every "%<name>" by the form of text for the place it stands:
    // unquoted, inside "..." or inside '...'. The search resumes behind the
    // inserted text, so a value is never expanded again. A placeholder in any
    // other place refuses the command, and nothing more is expanded.
    void expand(const std::string& name, const std::string& text);

    const std::string& text() const { return command; }

    // "%<name> <where it stands>" of the placeholder that refused the
    // command; empty while none has.
    const std::string& refusal() const { return refused; }

    // Runs the command. A shell status above 0 logs failedFormat and gives
    // 13; anything else (a failed fork too) logs doneFormat and gives 0.
    // Both formats take the command text in their one "%s". A refused
    // command is not run: it logs failedFormat with the command as declared
    // and gives 13.
    unsigned run(int priority, const char* doneFormat, const char* failedFormat) const;

    // The refusal that command gives whatever the values of names are, those
    // being expanded in this order.
    static std::string refusalOf(const std::string& command, const std::vector<std::string>& names);

    // The text as it stands when it is made of harmless characters only,
    // otherwise quoted for the shell with every "%" closed off by an empty
    // quoted pair, so that no later placeholder search can match inside it.
    static std::string shellSafe(const std::string& text);

    // The text for inside "...": \ $ ` and " behind a backslash, every "%"
    // closed off by an empty pair of double quotes.
    static std::string doubleQuotedSafe(const std::string& text);

    // The text for inside '...': the quotes closed, the unquoted form, and
    // the quotes opened again.
    static std::string singleQuotedSafe(const std::string& text);

private:
    std::string declared;
    std::string command;
    std::string refused;
};
