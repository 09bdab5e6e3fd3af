#include "PlixTestSyslog.h"

#include "PlixWait.h"

#include <cstring>
#include <poll.h>
#include <regex>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

PlixTestSyslog::PlixTestSyslog(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return;
    }
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    mSocket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (mSocket >= 0 && bind(mSocket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close(mSocket);
        mSocket = -1;
    }
}

PlixTestSyslog::~PlixTestSyslog()
{
    mStop = true;
    if (mReader.joinable()) {
        mReader.join();
    }
    if (mSocket >= 0) {
        close(mSocket);
    }
}

void PlixTestSyslog::startReading()
{
    if (valid() && !mReader.joinable()) {
        mReader = std::thread([this] { read(); });
    }
}

bool PlixTestSyslog::caughtUp() const
{
    // The queue first: a message taken from it is marked busy until kept.
    int queued = 0;
    return ioctl(mSocket, FIONREAD, &queued) == 0 && queued == 0 && !mBusy;
}

std::vector<std::string> PlixTestSyslog::messages() const
{
    const std::lock_guard<std::mutex> hold(mLock);
    return mMessages;
}

bool PlixTestSyslog::waitForMessages(std::size_t count, std::chrono::milliseconds bound) const
{
    return plixWaitUntil([&] { return messages().size() >= count; }, bound);
}

// Polls with a short bound, so the end of the test is seen soon.
void PlixTestSyslog::read()
{
    std::vector<char> message(65536);
    while (!mStop) {
        pollfd ready{mSocket, POLLIN, 0};
        if (poll(&ready, 1, 50) <= 0) {
            continue;
        }
        mBusy = true;
        const ssize_t length = recv(mSocket, message.data(), message.size(), MSG_DONTWAIT);
        if (length >= 0) {
            const std::lock_guard<std::mutex> hold(mLock);
            mMessages.emplace_back(message.data(), static_cast<std::size_t>(length));
        }
        mBusy = false;
    }
}

PlixSyslogMessage plixParseSyslog(const std::string& message)
{
    static const std::regex form("<([0-9]+)>[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{2}:[0-9]{2}:[0-9]{2} "
                                 "([^ :]+): ([\\s\\S]*)");
    std::smatch parts;
    if (!std::regex_match(message, parts, form)) {
        return {};
    }
    return {std::stoi(parts[1]), parts[2], parts[3]};
}
