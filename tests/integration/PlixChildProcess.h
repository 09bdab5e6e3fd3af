#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

// One program started by a test, with its standard output and error each
// captured in a file. The process is killed and reaped when the object goes,
// so no test leaves anything running.
class PlixChildProcess
{
public:
    // env: variables set on top of the test's own environment; a variable
    // given with an empty value is removed instead.
    PlixChildProcess(const std::vector<std::string>& argv,
                     const std::map<std::string, std::string>& env, const std::string& stdoutPath,
                     const std::string& stderrPath);
    ~PlixChildProcess();
    PlixChildProcess(const PlixChildProcess&) = delete;
    PlixChildProcess& operator=(const PlixChildProcess&) = delete;

    pid_t pid() const { return mPid; }
    bool running();

    // The exit status (128 + signal number for a killed process), or nothing
    // when the process is still running at the end of the bound.
    std::optional<int> waitExit(std::chrono::milliseconds bound);

    void sendSignal(int signal) const;

private:
    void reap(int rawStatus);

    pid_t mPid = -1;
    std::optional<int> mStatus;
};
