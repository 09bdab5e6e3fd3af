#include "PlixTestLogger.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace {
// How long the receiver waits for a datagram before it looks whether it is
// to stop.
constexpr int kStopCheckMs = 20;

// "<PRIORITY>TIMESTAMP TAG: TEXT", as the C library's syslog sends it.
PlixTestLogger::Message parsed(const std::string& datagram)
{
    PlixTestLogger::Message message{-1, datagram};
    const std::size_t close = datagram.find('>');
    const std::size_t text = datagram.find(": ");
    if (datagram.rfind('<', 0) == 0 && close != std::string::npos && text != std::string::npos) {
        message.priority = std::stoi(datagram.substr(1, close - 1));
        message.text = datagram.substr(text + 2);
    }
    return message;
}

int boundSocket(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error("log socket path too long: " + path);
    }
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        const std::string reason = std::strerror(errno);
        if (fd >= 0) {
            close(fd);
        }
        throw std::runtime_error("cannot bind the log socket " + path + ": " + reason);
    }
    return fd;
}
} // namespace

PlixTestLogger::PlixTestLogger(const PlixTestDir& dir)
    : mDevDir(dir.makeDirectory("dev")), mSocket(boundSocket(mDevDir + "/log")),
      mReceiver([this] { receive(); })
{
}

PlixTestLogger::~PlixTestLogger()
{
    mStop = true;
    mReceiver.join();
    close(mSocket);
}

std::map<std::string, std::string> PlixTestLogger::environment() const
{
    return {{"PLIX_TEST_DEV", mDevDir}};
}

std::vector<PlixTestLogger::Message> PlixTestLogger::messages() const
{
    const std::lock_guard<std::mutex> hold(mLock);
    return mMessages;
}

void PlixTestLogger::receive()
{
    pollfd waiting{mSocket, POLLIN, 0};
    char datagram[4096];
    while (!mStop) {
        if (poll(&waiting, 1, kStopCheckMs) <= 0) {
            continue;
        }
        ssize_t length = 0;
        while ((length = recv(mSocket, datagram, sizeof datagram, 0)) > 0) {
            const std::lock_guard<std::mutex> hold(mLock);
            mMessages.push_back(parsed(std::string(datagram, static_cast<std::size_t>(length))));
        }
    }
}
