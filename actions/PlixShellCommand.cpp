#include "PlixShellCommand.h"

#include "PlixLog.h"

#include <glib.h>

#include <algorithm>
#include <cstdlib>
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

} // namespace

PlixShellCommand::PlixShellCommand(std::string command) : command(std::move(command))
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

void PlixShellCommand::expand(const std::string& name, const std::string& text)
{
    replaceAll(command, "%" + name, shellSafe(text));
}

unsigned PlixShellCommand::run(int priority, const char* doneFormat, const char* failedFormat) const
{
    if (std::system(command.c_str()) > 0) {
        plixLog(priority, failedFormat, command.c_str());
        return 13;
    }
    plixLog(priority, doneFormat, command.c_str());
    return 0;
}
