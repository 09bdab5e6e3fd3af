// Runs a piece of a test in a forked child, so that what the child changes
// about itself (network namespace, host name, mounts) never reaches the test
// runner, and so that a hanging call is killed after a bounded wait.
#pragma once

#include <functional>
#include <string>

class PlixTestChild
{
public:
    struct Result
    {
        bool finished;      // the child ended by itself within the wait
        std::string output; // what the body returned, as the child sent it
    };

    // The body runs in the child; its returned text is handed back.
    static Result run(const std::function<std::string()>& body, int timeoutMs = 15000);

    // Takes one capability (CAP_...) from the calling process's effective
    // set, so that the kernel refuses what needs it; false when it cannot.
    static bool dropCapability(unsigned capability);

private:
    static std::string readAll(int fd, long deadlineMs, bool& complete);
    static bool reap(int pid, long deadlineMs);
};
