#include "PlixTestChild.h"

#include <csignal>
#include <cstdio>
#include <ctime>
#include <linux/capability.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
long nowMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}
} // namespace

PlixTestChild::Result PlixTestChild::run(const std::function<std::string()>& body, int timeoutMs)
{
    int channel[2];
    if (pipe(channel) != 0) {
        return {false, "pipe failed"};
    }
    // Buffered output of the runner must not be written twice.
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        close(channel[0]);
        std::string text = body();
        fflush(stdout);
        ssize_t written = write(channel[1], text.data(), text.size());
        _exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    close(channel[1]);
    if (pid < 0) {
        close(channel[0]);
        return {false, "fork failed"};
    }
    long deadline = nowMs() + timeoutMs;
    bool complete = false;
    std::string output = readAll(channel[0], deadline, complete);
    close(channel[0]);
    bool finished = reap(pid, complete ? deadline : nowMs());
    return {finished && complete, output};
}

std::string PlixTestChild::readAll(int fd, long deadlineMs, bool& complete)
{
    std::string text;
    char buffer[256];
    for (long left = deadlineMs - nowMs(); left > 0; left = deadlineMs - nowMs()) {
        pollfd ready{fd, POLLIN, 0};
        if (poll(&ready, 1, static_cast<int>(left)) <= 0) {
            continue;
        }
        ssize_t length = read(fd, buffer, sizeof buffer);
        if (length <= 0) {
            complete = length == 0;
            return text;
        }
        text.append(buffer, static_cast<size_t>(length));
    }
    return text;
}

bool PlixTestChild::reap(int pid, long deadlineMs)
{
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (nowMs() >= deadlineMs) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            return false;
        }
        usleep(10000);
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool PlixTestChild::dropCapability(unsigned capability)
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    if (syscall(SYS_capget, &header, data) != 0) {
        return false;
    }
    data[capability / 32].effective &= ~(1u << (capability % 32));
    return syscall(SYS_capset, &header, data) == 0;
}
