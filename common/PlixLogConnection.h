#pragma once

#include "PlixLogPathWatch.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <sys/uio.h>

enum class PlixLogSend {
    // The logger took the whole message.
    sent,
    // The logger's queue is full: it did not take the message now.
    busy,
    // No logger accepts connections at the path; the message is gone.
    absent,
};

// The service's connection to the system logger's socket, never waiting:
// a datagram socket as the C library opens it, or a stream one (each message
// ended by a zero byte) where the logger listens on a stream. A logger that
// went away and came back on the same path is reconnected to at once, as the
// C library does; one that is absent is looked for only when the path's
// watch says so.
class PlixLogConnection
{
public:
    explicit PlixLogConnection(std::string path);
    ~PlixLogConnection();
    PlixLogConnection(const PlixLogConnection&) = delete;
    PlixLogConnection& operator=(const PlixLogConnection&) = delete;

    // Whether a logger is connected, connecting first when the path's watch
    // says that one may have appeared.
    bool ready();
    // Sends one message made of count parts.
    PlixLogSend send(const iovec* parts, std::size_t count);
    // Waits at most bound for room in the logger's queue.
    bool waitForRoom(std::chrono::milliseconds bound) const;

private:
    bool open();
    bool connectAs(int type);
    void close();
    PlixLogSend sendOnce(const iovec* parts, std::size_t count);

    std::string mPath;
    PlixLogPathWatch mWatch;
    int mSocket = -1;
    bool mStream = false;
};
