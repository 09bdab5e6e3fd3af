#include "PlixServiceProcess.h"

#include "PlixTestPaths.h"
#include "PlixWait.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace {
// PLIX_SERVICE_WRAPPER names a program (and its arguments, separated by
// blanks) that runs the service, for instance a memory checker; the service's
// path and arguments follow it.
std::vector<std::string> wrapperWords()
{
    std::vector<std::string> words;
    const char* wrapper = std::getenv("PLIX_SERVICE_WRAPPER");
    std::istringstream text(wrapper != nullptr ? wrapper : "");
    for (std::string word; text >> word;) {
        words.push_back(word);
    }
    return words;
}

std::vector<std::string> withArgs(std::vector<std::string> command,
                                  const std::vector<std::string>& args)
{
    const auto wrapper = wrapperWords();
    command.insert(command.end(), wrapper.begin(), wrapper.end());
    command.push_back(PLIX_SERVICE_BINARY);
    command.insert(command.end(), args.begin(), args.end());
    return command;
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
    mProcess =
        std::make_unique<PlixChildProcess>(withArgs(command, args), env, mStdoutPath, mStderrPath);
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
    mProcess =
        std::make_unique<PlixChildProcess>(withArgs(command, args), env, mStdoutPath, mStderrPath);
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
