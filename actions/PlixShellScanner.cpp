#include "PlixShellScanner.h"

#include <cstring>

namespace {

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNameCharacter(char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9');
}

// The parameters whose name is one character: "$1x" is $1 followed by x.
bool isSpecialParameter(char c)
{
    return c != 0 && std::strchr("@*#?$!-0123456789", c) != nullptr;
}

} // namespace

PlixShellScanner::PlixShellScanner(const std::string& command)
    : text(command), levels{{Frame::Command, 0, std::string::npos, false}}
{
}

PlixShellContext PlixShellScanner::contextAt(const std::string& command, std::size_t position)
{
    PlixShellScanner scanner(command);
    while (!scanner.lost && scanner.at < position && scanner.at < command.size()) {
        scanner.step();
    }
    return scanner.context();
}

bool PlixShellScanner::writable(PlixShellContext context)
{
    return context == PlixShellContext::Bare || context == PlixShellContext::DoubleQuoted ||
           context == PlixShellContext::SingleQuoted;
}

const char* PlixShellScanner::describe(PlixShellContext context)
{
    switch (context) {
    case PlixShellContext::Bare:
        return "unquoted";
    case PlixShellContext::DoubleQuoted:
        return "inside double quotes";
    case PlixShellContext::SingleQuoted:
        return "inside single quotes";
    case PlixShellContext::AfterBackslash:
        return "after a backslash";
    case PlixShellContext::Backquoted:
        return "inside backquotes";
    case PlixShellContext::HereDocument:
        return "in a here-document";
    case PlixShellContext::Comment:
        return "in a comment";
    case PlixShellContext::ParameterName:
        return "right after $ or a parameter name";
    case PlixShellContext::TildePrefix:
        return "in a tilde prefix";
    case PlixShellContext::Brace:
        return "in a word with an unquoted {";
    case PlixShellContext::Unfollowed:
        break;
    }
    return "behind ${...} with an operator, $((, ((, $[, [[, $'...' or case inside $(...)";
}

PlixShellContext PlixShellScanner::context() const
{
    if (lost) {
        return rest;
    }
    const Frame frame = levels.back().frame;
    if (frame == Frame::Backquoted) {
        return PlixShellContext::Backquoted;
    }
    if (comment) {
        return PlixShellContext::Comment;
    }
    if (escaped) {
        return PlixShellContext::AfterBackslash;
    }
    if (dollar || parameterName) {
        return PlixShellContext::ParameterName;
    }
    if (frame == Frame::DoubleQuoted) {
        return PlixShellContext::DoubleQuoted;
    }
    // The single-quoted form leaves the value's plain characters unquoted.
    if (levels.back().brace) {
        return PlixShellContext::Brace;
    }
    if (singleQuoted) {
        return PlixShellContext::SingleQuoted;
    }
    return tilde ? PlixShellContext::TildePrefix : PlixShellContext::Bare;
}

void PlixShellScanner::step()
{
    const char c = text[at];
    if (dollar) {
        dollar = false;
        if (stepParameter(c)) {
            return;
        }
    } else if (parameterName) {
        if (isNameCharacter(c)) {
            ++at;
            return;
        }
        parameterName = false;
    }
    switch (levels.back().frame) {
    case Frame::Command:
        stepCommand(c);
        break;
    case Frame::DoubleQuoted:
        stepDoubleQuoted(c);
        break;
    case Frame::Backquoted:
        stepBackquoted(c);
        break;
    }
}

void PlixShellScanner::stepCommand(char c)
{
    if (singleQuoted || escaped || comment) {
        singleQuoted = singleQuoted && c != '\'';
        comment = comment && c != '\n';
        escaped = false;
        ++at;
    } else if (c == ' ' || c == '\t' || c == '\n') {
        endWord();
        wordStart = true;
        ++at;
    } else if (c != '\0' && std::strchr(";&|<>()", c) != nullptr) {
        stepOperator(c);
    } else if (c == '#' && wordStart) {
        comment = true;
        ++at;
    } else {
        stepWord(c);
    }
}

void PlixShellScanner::stepOperator(char c)
{
    endWord();
    wordStart = true;
    if (c == '<' && next() == '<') {
        lose(PlixShellContext::HereDocument);
        return;
    }
    if (c == '(' && next() == '(') {
        lose(PlixShellContext::Unfollowed);
        return;
    }
    ++at;
    Level& level = levels.back();
    if (c == '(') {
        ++level.parentheses;
    } else if (c == ')') {
        if (level.parentheses > 0) {
            --level.parentheses;
        } else if (nested()) {
            pop();
        }
    }
}

void PlixShellScanner::stepDoubleQuoted(char c)
{
    ++at;
    if (escaped) {
        escaped = false;
        return;
    }
    escaped = c == '\\';
    dollar = c == '$';
    if (c == '"') {
        pop();
    } else if (c == '`') {
        push(Frame::Backquoted);
    }
}

// A backquoted command ends at the first backquote not behind a backslash.
void PlixShellScanner::stepBackquoted(char c)
{
    ++at;
    if (escaped) {
        escaped = false;
        return;
    }
    escaped = c == '\\';
    if (c == '`') {
        pop();
    }
}

// Reads the character behind a "$"; false when the "$" stands for itself.
bool PlixShellScanner::stepParameter(char c)
{
    const bool dollarQuote = c == '\'' && levels.back().frame == Frame::Command;
    if ((c == '(' && next() == '(') || c == '[' || dollarQuote) {
        lose(PlixShellContext::Unfollowed);
        return true;
    }
    if (c == '(') {
        ++at;
        push(Frame::Command);
        return true;
    }
    if (c == '{') {
        skipBraces();
        return true;
    }
    if (isNameStart(c) || isSpecialParameter(c)) {
        parameterName = isNameStart(c);
        ++at;
        return true;
    }
    return false;
}

// Only "${name}" and "${special}" are followed; an operator inside the
// braces has quoting rules that differ between shells.
void PlixShellScanner::skipBraces()
{
    std::size_t end = at + 1;
    if (end < text.size() && isSpecialParameter(text[end]) && end + 1 < text.size() &&
        text[end + 1] == '}') {
        at = end + 2;
        return;
    }
    while (end < text.size() && isNameCharacter(text[end])) {
        ++end;
    }
    if (end > at + 1 && end < text.size() && text[end] == '}') {
        at = end + 1;
        return;
    }
    lose(PlixShellContext::Unfollowed);
}

// One character of a word outside quotes, or the quote, backslash or "$"
// that starts something inside it.
void PlixShellScanner::stepWord(char c)
{
    Level& level = levels.back();
    const bool tildeStarts = c == '~' && (wordStart || previous == '=' || previous == ':');
    if (wordStart) {
        wordStart = false;
        level.wordBegin = at;
    }
    tilde = (tilde && std::strchr("/\\'\"", c) == nullptr) || tildeStarts;
    level.brace = level.brace || c == '{';
    previous = c;
    ++at;
    singleQuoted = c == '\'';
    escaped = c == '\\';
    dollar = c == '$';
    if (c == '"') {
        push(Frame::DoubleQuoted);
    } else if (c == '`') {
        push(Frame::Backquoted);
    }
}

// Inside $(...) the reserved word "case" brings patterns with unbalanced
// parentheses, so the end of the substitution can no longer be found here;
// bash reads the operands of "[[" as arithmetic, which runs substitutions.
void PlixShellScanner::endWord()
{
    if ((nested() && wordIs("case")) || wordIs("[[")) {
        lose(PlixShellContext::Unfollowed);
    }
    levels.back().wordBegin = std::string::npos;
    levels.back().brace = false;
    tilde = false;
}

bool PlixShellScanner::wordIs(const char* word) const
{
    const Level& level = levels.back();
    return level.wordBegin != std::string::npos &&
           text.compare(level.wordBegin, at - level.wordBegin, word) == 0;
}

void PlixShellScanner::push(Frame frame)
{
    levels.push_back({frame, 0, std::string::npos, false});
    singleQuoted = escaped = comment = dollar = parameterName = tilde = false;
    wordStart = frame == Frame::Command;
    previous = 0;
}

// Back in the enclosing level, in the middle of the word that the quoted
// text or substitution belongs to.
void PlixShellScanner::pop()
{
    levels.pop_back();
    singleQuoted = escaped = comment = dollar = parameterName = tilde = false;
    wordStart = false;
    previous = 0;
}

void PlixShellScanner::lose(PlixShellContext context)
{
    lost = true;
    rest = context;
}

char PlixShellScanner::next() const
{
    return at + 1 < text.size() ? text[at + 1] : '\0';
}
