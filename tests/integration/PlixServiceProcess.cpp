#include "PlixServiceProcess.h"

#include "PlixTestPaths.h"
#include "PlixWait.h"

#include <signal.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace {
// PLIX_SERVICE_WRAPPER names a program (and its arguments, separated by
// blanks) that runs the service, for instance a memory checker; the service's
// path and arguments follow it. A test may give one instance a wrapper of its
// own among the instance's variables.
std::vector<std::string> wrapperWords(const std::map<std::string, std::string>& env)
{
    std::vector<std::string> words;
    const auto own = env.find("PLIX_SERVICE_WRAPPER");
    const char* wrapper =
        own != env.end() ? own->second.c_str() : std::getenv("PLIX_SERVICE_WRAPPER");
    std::istringstream text(wrapper != nullptr ? wrapper : "");
    for (std::string word; text >> word;) {
        words.push_back(word);
    }
    return words;
}

std::vector<std::string> withArgs(std::vector<std::string> command,
                                  const std::vector<std::string>& args,
                                  const std::map<std::string, std::string>& env)
{
    const auto wrapper = wrapperWords(env);
    command.insert(command.end(), wrapper.begin(), wrapper.end());
    command.push_back(PLIX_SERVICE_BINARY);
    command.insert(command.end(), args.begin(), args.end());
    return command;
}

// What AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer write
// to standard error when they find something.
const char* const kSanitizerReports[] = {"ERROR: AddressSanitizer", "ERROR: LeakSanitizer",
                                         "runtime error: ", "SUMMARY: UndefinedBehaviorSanitizer"};

std::vector<pid_t> childrenOf(pid_t pid)
{
    const std::string tid = std::to_string(pid);
    std::istringstream text(PlixTestDir::readFile("/proc/" + tid + "/task/" + tid + "/children"));
    std::vector<pid_t> children;
    for (pid_t child = 0; text >> child;) {
        children.push_back(child);
    }
    return children;
}

// Whether a process runs the service, directly or under a wrapper: its
// command line names the service, and it is not a copy of the namespace's
// first process (whose command line names the service too), such as the
// helper a leak checker forks when that process ends.
bool runsService(pid_t pid)
{
    std::string command = PlixTestDir::readFile("/proc/" + std::to_string(pid) + "/cmdline");
    if (command.rfind(std::string(PLIX_NS_INIT) + '\0', 0) == 0) {
        return false;
    }
    std::replace(command.begin(), command.end(), '\0', ' ');
    return command.find(PLIX_SERVICE_BINARY) != std::string::npos;
}

// The children that run the service, not a program that one of its actions
// started.
std::vector<pid_t> serviceChildrenOf(pid_t parent)
{
    std::vector<pid_t> services;
    for (pid_t child : childrenOf(parent)) {
        if (runsService(child)) {
            services.push_back(child);
        }
    }
    return services;
}

// Sends the signal to the service itself: a wrapper that runs it as its child
// (strace) passes its status on but not every signal.
bool signalService(pid_t pid, int signal)
{
    for (std::vector<pid_t> inner = serviceChildrenOf(pid); !inner.empty();
         inner = serviceChildrenOf(pid)) {
        pid = inner.front();
    }
    return kill(pid, signal) == 0;
}

std::string sanitizerReportIn(const std::string& text)
{
    for (const char* report : kSanitizerReports) {
        if (text.find(report) != std::string::npos) {
            return std::string("a sanitizer report (\"") + report + "\") on standard error\n";
        }
    }
    return "";
}

std::string statusProblem(pid_t pid, const std::optional<int>& status)
{
    if (!status) {
        return "process " + std::to_string(pid) + " still runs after SIGTERM and the bound\n";
    }
    if (*status != 0) {
        return "process " + std::to_string(pid) + " ended with status " + std::to_string(*status) +
               " after SIGTERM\n";
    }
    return "";
}
} // namespace

PlixServiceProcess::PlixServiceProcess(const PlixTestDir& dir, const std::string& name,
                                       const std::vector<std::string>& args,
                                       std::map<std::string, std::string> env)
    : mStdoutPath(dir.file(name + ".stdout")), mStderrPath(dir.file(name + ".stderr")),
      mLockDir(dir.makeDirectory(name + ".lock")), mStatusPath(dir.file(name + ".ended"))
{
    env["PLIX_TEST_LOCKDIR"] = mLockDir;
    env["PLIX_TEST_REAL_LOCK"] = plixRealLockDirectory();
    // --kill-child: whatever ends the unshare process ends the namespace too.
    const std::vector<std::string> command{
        PLIX_UNSHARE,    "--mount",  "--ipc",        "--pid", "--fork",  "--mount-proc",
        "--propagation", "private",  "--kill-child", "--",    "/bin/sh", PLIX_NS_SETUP_SCRIPT,
        PLIX_NS_INIT,    mStatusPath};
    mProcess = std::make_unique<PlixChildProcess>(withArgs(command, args, env), env, mStdoutPath,
                                                  mStderrPath);
}

PlixServiceProcess::PlixServiceProcess(const PlixTestDir& dir, const std::string& name,
                                       const std::vector<std::string>& args,
                                       const std::map<std::string, std::string>& env,
                                       PlixServiceProcess& host)
    : mStdoutPath(dir.file(name + ".stdout")), mStderrPath(dir.file(name + ".stderr")),
      mLockDir(host.mLockDir)
{
    const pid_t target = host.namespaceInitPid();
    if (target <= 0) {
        throw std::runtime_error("the first instance's namespace is gone");
    }
    const std::vector<std::string> command{
        PLIX_NSENTER, "--target", std::to_string(target), "--mount", "--ipc", "--pid", "--"};
    mProcess = std::make_unique<PlixChildProcess>(withArgs(command, args, env), env, mStdoutPath,
                                                  mStderrPath);
}

std::string PlixServiceProcess::stdoutText() const
{
    return PlixTestDir::readFile(mStdoutPath);
}

std::vector<std::string> PlixServiceProcess::stdoutLines() const
{
    return PlixTestDir::splitLines(stdoutText());
}

std::string PlixServiceProcess::stderrText() const
{
    return PlixTestDir::readFile(mStderrPath);
}

bool PlixServiceProcess::waitForLine(const std::string& line, std::chrono::milliseconds bound) const
{
    return plixWaitUntil(
        [&] {
            const auto lines = stdoutLines();
            return std::find(lines.begin(), lines.end(), line) != lines.end();
        },
        bound);
}

std::optional<int> PlixServiceProcess::waitExit(std::chrono::milliseconds bound)
{
    return mProcess->waitExit(bound);
}

bool PlixServiceProcess::running()
{
    return mProcess->running();
}

std::vector<std::pair<pid_t, int>> PlixServiceProcess::endedProcesses() const
{
    std::vector<std::pair<pid_t, int>> ended;
    std::istringstream lines(PlixTestDir::readFile(mStatusPath));
    pid_t pid = 0;
    int status = 0;
    while (lines >> pid >> status) {
        ended.emplace_back(pid, status);
    }
    return ended;
}

std::string PlixServiceProcess::pidFilePath() const
{
    return mLockDir + "/com.orvanta.plix.pid";
}

std::string PlixServiceProcess::namespaceRoot()
{
    return "/proc/" + std::to_string(namespaceInitPid()) + "/root";
}

std::string PlixServiceProcess::stop(std::chrono::milliseconds bound)
{
    std::string problems;
    if (mProcess->running()) {
        problems = mStatusPath.empty() ? stopEntered(bound) : stopInOwnNamespace(bound);
    }
    return problems + sanitizerReportIn(stderrText());
}

// The namespace's first process records the status of each process that
// ends in it, a daemon's detached child included.
std::string PlixServiceProcess::stopInOwnNamespace(std::chrono::milliseconds bound)
{
    std::vector<pid_t> inside;
    for (pid_t pid : serviceChildrenOf(namespaceInitPid())) {
        const pid_t id = namespacePidOf(pid);
        if (id > 0 && signalService(pid, SIGTERM)) {
            inside.push_back(id);
        }
    }
    const auto statusOf = [this](pid_t pid) -> std::optional<int> {
        for (const auto& [ended, status] : endedProcesses()) {
            if (ended == pid) {
                return status;
            }
        }
        return std::nullopt;
    };
    plixWaitUntil(
        [&] {
            return std::all_of(inside.begin(), inside.end(),
                               [&](pid_t pid) { return statusOf(pid).has_value(); });
        },
        bound);
    std::string problems;
    for (pid_t pid : inside) {
        problems += statusProblem(pid, statusOf(pid));
    }
    return problems;
}

// nsenter ends as the instance it started does.
std::string PlixServiceProcess::stopEntered(std::chrono::milliseconds bound)
{
    const std::vector<pid_t> services = serviceChildrenOf(mProcess->pid());
    if (services.empty()) {
        return "";
    }
    for (pid_t pid : services) {
        signalService(pid, SIGTERM);
    }
    return statusProblem(mProcess->pid(), mProcess->waitExit(bound));
}

pid_t PlixServiceProcess::namespacePidOf(pid_t pid)
{
    // "NSpid:" lists the id in each namespace, outermost first.
    std::istringstream status(PlixTestDir::readFile("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("NSpid:", 0) == 0) {
            return static_cast<pid_t>(std::stol(line.substr(line.find_last_of(" \t") + 1)));
        }
    }
    return -1;
}

pid_t PlixServiceProcess::namespaceInitPid()
{
    // The namespace's first process is the only child of unshare.
    const std::string children = "/proc/" + std::to_string(mProcess->pid()) + "/task/" +
                                 std::to_string(mProcess->pid()) + "/children";
    pid_t init = 0;
    plixWaitUntil(
        [&] {
            std::istringstream(PlixTestDir::readFile(children)) >> init;
            return init > 0 || !mProcess->running();
        },
        std::chrono::seconds(5));
    return init;
}
