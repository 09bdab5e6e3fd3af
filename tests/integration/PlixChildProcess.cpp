#include "PlixChildProcess.h"

#include "PlixWait.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

extern char** environ;

namespace {
std::vector<std::string> mergedEnvironment(const std::map<std::string, std::string>& overrides)
{
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('='));
        if (overrides.count(name) == 0) {
            result.push_back(text);
        }
    }
    for (const auto& [name, value] : overrides) {
        if (!value.empty()) {
            result.push_back(name + "=" + value);
        }
    }
    return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

int openOutput(const std::string& path)
{
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        throw std::runtime_error("cannot create " + path);
    }
    return fd;
}
} // namespace

PlixChildProcess::PlixChildProcess(const std::vector<std::string>& argv,
                                   const std::map<std::string, std::string>& env,
                                   const std::string& stdoutPath, const std::string& stderrPath)
{
    // Everything the child needs is prepared before fork: between fork and
    // exec only async-signal-safe calls are allowed in a threaded process.
    std::vector<std::string> args = argv;
    std::vector<std::string> envTexts = mergedEnvironment(env);
    std::vector<char*> argPointers = pointersTo(args);
    std::vector<char*> envPointers = pointersTo(envTexts);
    const int out = openOutput(stdoutPath);
    const int err = openOutput(stderrPath);
    const int in = open("/dev/null", O_RDONLY | O_CLOEXEC);

    mPid = fork();
    if (mPid == 0) {
        dup2(in, STDIN_FILENO);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        execve(argPointers[0], argPointers.data(), envPointers.data());
        _exit(127);
    }
    close(in);
    close(out);
    close(err);
    if (mPid < 0) {
        throw std::runtime_error("fork failed");
    }
}

PlixChildProcess::~PlixChildProcess()
{
    if (running()) {
        sendSignal(SIGKILL);
        waitExit(std::chrono::seconds(5));
    }
}

void PlixChildProcess::reap(int rawStatus)
{
    mStatus = WIFEXITED(rawStatus) ? WEXITSTATUS(rawStatus) : 128 + WTERMSIG(rawStatus);
}

bool PlixChildProcess::running()
{
    if (mStatus || mPid <= 0) {
        return false;
    }
    int rawStatus = 0;
    if (waitpid(mPid, &rawStatus, WNOHANG) == mPid) {
        reap(rawStatus);
        return false;
    }
    return true;
}

std::optional<int> PlixChildProcess::waitExit(std::chrono::milliseconds bound)
{
    plixWaitUntil([this] { return !running(); }, bound);
    return mStatus;
}

void PlixChildProcess::sendSignal(int signal) const
{
    if (mPid > 0 && !mStatus) {
        kill(mPid, signal);
    }
}
