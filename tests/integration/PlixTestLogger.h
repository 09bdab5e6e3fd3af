#pragma once

#include "PlixTestDir.h"

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A system logger for one service: a datagram socket named "log" in a
// directory of the test that the service's namespace takes as its /dev. A
// thread of its own takes every message as it comes, as a real logger does:
// the kernel queues only a few datagrams, and a service whose messages are
// not taken waits in its next one.
class PlixTestLogger
{
public:
    struct Message
    {
        int priority;
        // The message's own text, without the header the C library puts
        // before it.
        std::string text;
    };

    explicit PlixTestLogger(const PlixTestDir& dir);
    ~PlixTestLogger();
    PlixTestLogger(const PlixTestLogger&) = delete;
    PlixTestLogger& operator=(const PlixTestLogger&) = delete;

    // The variables that give the service this logger.
    std::map<std::string, std::string> environment() const;
    // Every message received so far, oldest first.
    std::vector<Message> messages() const;

private:
    void receive();

    std::string mDevDir;
    int mSocket = -1;
    std::atomic<bool> mStop{false};
    mutable std::mutex mLock;
    std::vector<Message> mMessages;
    std::thread mReceiver;
};
