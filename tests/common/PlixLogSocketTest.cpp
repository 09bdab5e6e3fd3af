#include "PlixLog.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <sched.h>
#include <sys/inotify.h>
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

bool privateDevMounted()
{
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/dev", "tmpfs", 0, nullptr) == 0;
}

// Whether this machine lets a process mount a /dev of its own and watch a
// log socket appear in it. Some sandboxes forbid the mount, and a user-mode
// emulator with a sysroot redirects the watched /dev into that sysroot.
bool logSocketArrivalObservable()
{
    const pid_t child = fork();
    if (child == 0) {
        const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
        const bool bound = privateDevMounted() && watch >= 0 &&
                           inotify_add_watch(watch, "/dev", IN_CREATE) >= 0 &&
                           boundLogSocket() >= 0;
        alignas(inotify_event) char event[sizeof(inotify_event) + NAME_MAX + 1];
        _exit(bound && read(watch, event, sizeof event) > 0 ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

// Logs once with no log socket, then creates the socket in a /dev of its own
// and logs again: the second message must arrive there, with the default
// facility (user) and the priority given.
[[noreturn]] void logAcrossTheSocketsArrival()
{
    if (!privateDevMounted()) {
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

std::string receiveFrom(int log)
{
    char received[8192];
    const ssize_t length = recv(log, received, sizeof received, 0);
    return std::string(received, length > 0 ? static_cast<std::size_t>(length) : 0);
}

// Logs each message through the C library's syslog(), through plixLog and
// through syslog() again, in a /dev of its own: the service's datagram must
// be byte for byte the C library's of the same second.
[[noreturn]] void logBesideTheCLibrary()
{
    if (!privateDevMounted()) {
        _exit(noPrivateDev);
    }
    const int log = boundLogSocket();
    if (log < 0) {
        _exit(noPrivateDev);
    }
    const std::pair<int, std::string> messages[] = {{LOG_NOTICE, "Client timeout!"},
                                                    {LOG_ERR, "100% sure\n"},
                                                    {LOG_DEBUG, std::string(3000, 'x')},
                                                    {LOG_INFO, ""}};
    for (const auto& [priority, text] : messages) {
        syslog(priority, "%s", text.c_str());
        plixLog(priority, "%s", text.c_str());
        syslog(priority, "%s", text.c_str());
        const std::string before = receiveFrom(log);
        const std::string ours = receiveFrom(log);
        const std::string after = receiveFrom(log);
        if (ours.empty() || (ours != before && ours != after)) {
            _exit(notDelivered);
        }
    }
    _exit(delivered);
}
} // namespace

TEST(PlixLogSocket, MessageReachesALogSocketThatAppearedAfterTheFirstMessage)
{
    if (!logSocketArrivalObservable()) {
        GTEST_SKIP() << "a log socket in a private /dev cannot be watched here";
    }
    // A fresh process, so the log's watch starts inside the private /dev.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(logAcrossTheSocketsArrival(), testing::ExitedWithCode(delivered), "");
}

TEST(PlixLogSocket, MessagesAreByteForByteWhatTheCLibrarySends)
{
    if (!logSocketArrivalObservable()) {
        GTEST_SKIP() << "a log socket in a private /dev cannot be watched here";
    }
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(logBesideTheCLibrary(), testing::ExitedWithCode(delivered), "");
}
