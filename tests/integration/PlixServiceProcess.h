#pragma once

#include "PlixChildProcess.h"
#include "PlixTestDir.h"

#include <sys/types.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// The real dbus-ex-plix run as a device would run it, but inside private
// mount, IPC and PID namespaces: its PID file, its semaphore set and the
// processes that its actions may kill are the test's own. Its standard output
// and error are captured in files of the test directory.
class PlixServiceProcess
{
public:
    // Starts the service in fresh namespaces. env holds the variables the
    // service sees on top of the test's environment.
    PlixServiceProcess(const PlixTestDir& dir, const std::string& name,
                       const std::vector<std::string>& args,
                       std::map<std::string, std::string> env);
    // Starts a further instance inside the namespaces of host, where it meets
    // host's PID file and semaphore set.
    PlixServiceProcess(const PlixTestDir& dir, const std::string& name,
                       const std::vector<std::string>& args,
                       const std::map<std::string, std::string>& env, PlixServiceProcess& host);

    std::string stdoutText() const;
    std::vector<std::string> stdoutLines() const;
    std::string stderrText() const;
    // Waits until standard output holds this whole line.
    bool waitForLine(const std::string& line, std::chrono::milliseconds bound) const;

    // Exit status of the instance started (for a daemon: of its parent).
    std::optional<int> waitExit(std::chrono::milliseconds bound);
    bool running();

    // Exit statuses of every process that ended in the namespace, by their
    // process ids inside it (fresh namespaces only).
    std::vector<std::pair<pid_t, int>> endedProcesses() const;
    std::string pidFilePath() const;
    // The root directory as the service's namespace sees it
    // ("/proc/PID/root"): a path below it reaches that namespace's mounts,
    // such as a private /dev.
    std::string namespaceRoot();

    // Stops what is left of the instance as an init system does: SIGTERM to
    // each of its service processes, then a bounded wait for them. Returns
    // what went wrong, empty when nothing did: a process that outlived the
    // bound or ended with a status other than 0, or a sanitizer report on
    // standard error (also from an instance that had already ended).
    std::string stop(std::chrono::milliseconds bound);

    // The id that a process of this machine has inside its own PID namespace.
    static pid_t namespacePidOf(pid_t pid);

private:
    pid_t namespaceInitPid();
    std::string stopInOwnNamespace(std::chrono::milliseconds bound);
    std::string stopEntered(std::chrono::milliseconds bound);

    std::string mStdoutPath;
    std::string mStderrPath;
    std::string mLockDir;
    std::string mStatusPath;
    std::unique_ptr<PlixChildProcess> mProcess;
};
