#pragma once

#include <string>

// A password given as "-" is read here, one line of standard input, so that
// it never shows in a command line, a process list or a shell history. At a
// terminal it asks on standard error and does not echo what is typed.
class PlixctlSecretInput
{
public:
    // False when standard input ends before a line.
    static bool readLine(const std::string& id, std::string& secret);
};
