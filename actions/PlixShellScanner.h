#pragma once

#include <cstddef>
#include <string>
#include <vector>

// How the shell reads the text at one place of a command. Only the first
// three are places where a value can be written so that the shell reads
// exactly its text and nothing else; the others refuse values.
enum class PlixShellContext {
    Bare,
    DoubleQuoted,
    SingleQuoted,
    AfterBackslash,
    Backquoted,
    HereDocument,
    Comment,
    ParameterName,
    TildePrefix,
    Brace,
    Unfollowed,
};

// Reads a command as /bin/sh splits it into words: unquoted text, '...',
// "...", $(...) nested to any depth (inside it the command starts afresh),
// backquotes, comments and here-documents. Where the shell's reading depends
// on constructs it does not follow (${...} with an operator, arithmetic,
// $'...', [[, case inside $(...)), everything behind them is Unfollowed.
// A word with an unquoted "{" is refused where bash would expand braces.
class PlixShellScanner
{
public:
    // The context of the character at position, as the shell reads command.
    static PlixShellContext contextAt(const std::string& command, std::size_t position);

    static bool writable(PlixShellContext context);

    // Where a refused context stands, in words for a log line.
    static const char* describe(PlixShellContext context);

private:
    enum class Frame {
        Command,
        DoubleQuoted,
        Backquoted,
    };

    struct Level
    {
        Frame frame;
        // Subshell parentheses open inside this level.
        int parentheses;
        // Where the unquoted word being read started, npos between words.
        std::size_t wordBegin;
        // The word holds an unquoted "{".
        bool brace;
    };

    explicit PlixShellScanner(const std::string& command);

    PlixShellContext context() const;
    void step();
    void stepCommand(char c);
    void stepOperator(char c);
    void stepDoubleQuoted(char c);
    void stepBackquoted(char c);
    bool stepParameter(char c);
    void skipBraces();
    void stepWord(char c);
    void endWord();
    bool wordIs(const char* word) const;
    void push(Frame frame);
    void pop();
    void lose(PlixShellContext context);
    char next() const;
    bool nested() const { return levels.size() > 1; }

    const std::string& text;
    std::size_t at = 0;
    std::vector<Level> levels;
    // Everything from here on is read in this context, when lost is set.
    bool lost = false;
    PlixShellContext rest = PlixShellContext::Unfollowed;
    // States of the innermost level.
    bool singleQuoted = false;
    bool escaped = false;
    bool comment = false;
    bool dollar = false;
    bool parameterName = false;
    bool tilde = false;
    bool wordStart = true;
    char previous = 0;
};
