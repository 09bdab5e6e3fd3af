#include "PlixTestLogger.h"

#include <cstdlib>
#include <filesystem>
#include <cstring>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

PlixTestLogger::PlixTestLogger(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return;
    }
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    const timeval patience{5, 0};
    mSocket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (mSocket >= 0 &&
        (bind(mSocket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
         setsockopt(mSocket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0)) {
        close(mSocket);
        mSocket = -1;
    }
}

PlixTestLogger::~PlixTestLogger()
{
    if (mSocket >= 0) {
        close(mSocket);
    }
}

std::string PlixTestLogger::receive() const
{
    char message[8192];
    const ssize_t length = recv(mSocket, message, sizeof message, 0);
    return std::string(message, length > 0 ? static_cast<std::size_t>(length) : 0);
}

std::string PlixTestLogger::receiveQueued() const
{
    char message[8192];
    const ssize_t length = recv(mSocket, message, sizeof message, MSG_DONTWAIT);
    return std::string(message, length > 0 ? static_cast<std::size_t>(length) : 0);
}

int PlixTestLogger::drain() const
{
    int count = 0;
    while (!receiveQueued().empty()) {
        ++count;
    }
    return count;
}

PlixTestLogDir::PlixTestLogDir()
{
    char pattern[] = "/tmp/plix-log-XXXXXX";
    if (mkdtemp(pattern) != nullptr) {
        mPath = pattern;
    }
}

PlixTestLogDir::~PlixTestLogDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}
