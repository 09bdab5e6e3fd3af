#include "PlixLogConnection.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <algorithm>
#include <utility>

namespace {
// A message has its header, its text and, on a stream, the zero byte.
constexpr std::size_t mostParts = 4;
} // namespace

PlixLogConnection::PlixLogConnection(std::string path) : mPath(std::move(path)), mWatch(mPath)
{
}

PlixLogConnection::~PlixLogConnection()
{
    close();
}

bool PlixLogConnection::ready()
{
    return mSocket >= 0 || (mWatch.due(PlixLogPathWatch::now()) && open());
}

PlixLogSend PlixLogConnection::send(const iovec* parts, std::size_t count)
{
    if (!ready()) {
        return PlixLogSend::absent;
    }
    const PlixLogSend first = sendOnce(parts, count);
    if (first != PlixLogSend::absent) {
        return first;
    }
    // The logger may have been restarted on the same path: one fresh
    // connection, and the message is sent once more.
    close();
    if (!open()) {
        mWatch.arm(PlixLogPathWatch::now());
        return PlixLogSend::absent;
    }
    return sendOnce(parts, count);
}

bool PlixLogConnection::waitForRoom(std::chrono::milliseconds bound) const
{
    pollfd room{mSocket, POLLOUT, 0};
    return mSocket >= 0 && poll(&room, 1, static_cast<int>(bound.count())) > 0 &&
           (room.revents & POLLOUT) != 0;
}

bool PlixLogConnection::open()
{
    if (connectAs(SOCK_DGRAM) || (errno == EPROTOTYPE && connectAs(SOCK_STREAM))) {
        mWatch.disarm();
        return true;
    }
    return false;
}

bool PlixLogConnection::connectAs(int type)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (mPath.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    std::memcpy(address.sun_path, mPath.c_str(), mPath.size() + 1);
    mSocket = socket(AF_UNIX, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (mSocket < 0) {
        return false;
    }
    if (connect(mSocket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        mStream = type == SOCK_STREAM;
        return true;
    }
    const int error = errno;
    close();
    errno = error;
    return false;
}

void PlixLogConnection::close()
{
    if (mSocket >= 0) {
        ::close(mSocket);
        mSocket = -1;
    }
}

PlixLogSend PlixLogConnection::sendOnce(const iovec* parts, std::size_t count)
{
    iovec all[mostParts];
    std::size_t used = std::min(count, mostParts - 1);
    std::copy(parts, parts + used, all);
    std::size_t total = 0;
    for (std::size_t part = 0; part < used; ++part) {
        total += all[part].iov_len;
    }
    static char endOfMessage = '\0';
    if (mStream) {
        all[used++] = iovec{&endOfMessage, 1};
        ++total;
    }
    msghdr message{};
    message.msg_iov = all;
    message.msg_iovlen = used;
    const ssize_t written = sendmsg(mSocket, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (written >= 0) {
        // A stream that took part of a message is out of step with the
        // logger: the next message starts on a fresh connection.
        if (static_cast<std::size_t>(written) < total) {
            close();
            open();
        }
        return PlixLogSend::sent;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == ENOBUFS ? PlixLogSend::busy
                                                                       : PlixLogSend::absent;
}
