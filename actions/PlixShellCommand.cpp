#include "PlixShellCommand.h"

#include "PlixLog.h"
#include "PlixShellScanner.h"

#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

bool isPlainWord(const std::string& text)
{
    static const std::string punctuation = "._-:/@+=,";
    if (text.empty()) {
        return false;
    }
    return std::all_of(text.begin(), text.end(), [](char c) {
        return g_ascii_isalnum(c) || punctuation.find(c) != std::string::npos;
    });
}

void replaceAll(std::string& text, const std::string& from, const std::string& to)
{
    std::string::size_type position = text.find(from);
    while (position != std::string::npos) {
        text.replace(position, from.size(), to);
        position = text.find(from, position + to.size());
    }
}

std::string safeFor(PlixShellContext context, const std::string& text)
{
    switch (context) {
    case PlixShellContext::DoubleQuoted:
        return PlixShellCommand::doubleQuotedSafe(text);
    case PlixShellContext::SingleQuoted:
        return PlixShellCommand::singleQuotedSafe(text);
    default:
        return PlixShellCommand::shellSafe(text);
    }
}

} // namespace

PlixShellCommand::PlixShellCommand(std::string command)
    : declared(command), command(std::move(command))
{
}

std::string PlixShellCommand::shellSafe(const std::string& text)
{
    if (isPlainWord(text)) {
        return text;
    }
    std::unique_ptr<gchar, decltype(&g_free)> quoted(g_shell_quote(text.c_str()), &g_free);
    std::string safe = quoted.get();
    replaceAll(safe, "%", "%''");
    return safe;
}

// Like the unquoted form, the text ends at its first zero byte: the shell
// never sees what follows it.
std::string PlixShellCommand::doubleQuotedSafe(const std::string& text)
{
    std::string safe;
    for (const char* c = text.c_str(); *c != '\0'; ++c) {
        if (std::strchr("\\$`\"", *c) != nullptr) {
            safe += '\\';
        }
        safe += *c;
        if (*c == '%') {
            safe += "\"\"";
        }
    }
    return safe;
}

std::string PlixShellCommand::singleQuotedSafe(const std::string& text)
{
    return "'" + shellSafe(text) + "'";
}

void PlixShellCommand::expand(const std::string& name, const std::string& text)
{
    const std::string placeholder = "%" + name;
    std::string::size_type position = command.find(placeholder);
    while (refused.empty() && position != std::string::npos) {
        const PlixShellContext context = PlixShellScanner::contextAt(command, position);
        if (!PlixShellScanner::writable(context)) {
            refused = placeholder + " " + PlixShellScanner::describe(context);
            return;
        }
        const std::string safe = safeFor(context, text);
        command.replace(position, placeholder.size(), safe);
        position = command.find(placeholder, position + safe.size());
    }
}

std::string PlixShellCommand::refusalOf(const std::string& command,
                                        const std::vector<std::string>& names)
{
    PlixShellCommand shellCommand(command);
    for (const std::string& name : names) {
        shellCommand.expand(name, "");
    }
    return shellCommand.refusal();
}

unsigned PlixShellCommand::run(int priority, const char* doneFormat, const char* failedFormat) const
{
    if (!refused.empty()) {
        plixLog(priority, failedFormat, declared.c_str());
        return 13;
    }
    if (std::system(command.c_str()) > 0) {
        plixLog(priority, failedFormat, command.c_str());
        return 13;
    }
    plixLog(priority, doneFormat, command.c_str());
    return 0;
}
