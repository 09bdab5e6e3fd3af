#pragma once

#include <string>

// How plixctl reports a result: the service's result code mapped to the exit
// status a shell script tests, and the code's meaning for the one line on
// standard error. The table is printed by "plixctl --help".
class PlixctlStatus
{
public:
    static constexpr int success = 0;
    static constexpr int verifyMismatch = 1;
    static constexpr int busError = 2;
    static constexpr int busy = 3;
    static constexpr int unknownId = 4;
    static constexpr int invalidValue = 5;
    static constexpr int readOnly = 6;
    static constexpr int actionFailed = 7;
    static constexpr int otherCode = 8;
    static constexpr int notStored = 9;
    static constexpr int usageError = 64;
    // The service's answer to a set applied but not written to its store
    // file (the monitor interface's Apply only).
    static constexpr int notStoredCode = 17;

    // 0 and 1 (a set that replaced an earlier one) are success.
    static int exitStatusOf(int code);
    static std::string meaningOf(int code);
    // The exit-status table as "plixctl --help" shows it.
    static std::string table();
};
