#include "PlixLog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
// Exit statuses of the child that logs into a private /dev.
constexpr int delivered = 0;
constexpr int notDelivered = 1;
constexpr int noPrivateDev = 2;

bool privateMountsPossible()
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(unshare(CLONE_NEWNS) == 0 ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

int boundLogSocket()
{
    const int log = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, _PATH_LOG, sizeof address.sun_path - 1);
    const timeval patience{5, 0};
    if (log < 0 || bind(log, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        setsockopt(log, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0) {
        return -1;
    }
    return log;
}

// Logs once with no log socket, then creates the socket in a /dev of its own
// and logs again: the second message must arrive there, with the default
// facility (user) and the priority given.
[[noreturn]] void logAcrossTheSocketsArrival()
{
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) ||
        mount("tmpfs", "/dev", "tmpfs", 0, nullptr) != 0) {
        _exit(noPrivateDev);
    }
    plixLog(LOG_NOTICE, "before the socket");
    const int log = boundLogSocket();
    if (log < 0) {
        _exit(noPrivateDev);
    }
    plixLog(LOG_NOTICE, "after the socket %d", 7);
    char received[512];
    const ssize_t length = recv(log, received, sizeof received, 0);
    const std::string message(received, length > 0 ? static_cast<std::size_t>(length) : 0);
    const std::string text = ": after the socket 7";
    const bool expected = message.rfind("<13>", 0) == 0 && message.size() > text.size() &&
                          message.compare(message.size() - text.size(), text.size(), text) == 0;
    _exit(expected ? delivered : notDelivered);
}
} // namespace

TEST(PlixLogSocket, MessageReachesALogSocketThatAppearedAfterTheFirstMessage)
{
    if (!privateMountsPossible()) {
        GTEST_SKIP() << "no private mount namespace here";
    }
    // A fresh process, so the log's watch starts inside the private /dev.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(logAcrossTheSocketsArrival(), testing::ExitedWithCode(delivered), "");
}
