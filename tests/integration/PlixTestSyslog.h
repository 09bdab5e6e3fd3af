#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A system logger for one test: a datagram socket bound at a path (for the
// service's /dev/log, below its namespace root), whose messages a thread of
// the test collects once reading is started. Until then it takes nothing,
// as a logger that has stopped reading.
class PlixTestSyslog
{
public:
    explicit PlixTestSyslog(const std::string& path);
    ~PlixTestSyslog();
    PlixTestSyslog(const PlixTestSyslog&) = delete;
    PlixTestSyslog& operator=(const PlixTestSyslog&) = delete;

    bool valid() const { return mSocket >= 0; }
    void startReading();
    // Whether every message sent so far has been collected.
    bool caughtUp() const;
    // The messages collected so far, whole (header and text).
    std::vector<std::string> messages() const;
    bool waitForMessages(std::size_t count, std::chrono::milliseconds bound) const;

private:
    void read();

    int mSocket = -1;
    std::atomic<bool> mStop{false};
    std::atomic<bool> mBusy{false};
    mutable std::mutex mLock;
    std::vector<std::string> mMessages;
    std::thread mReader;
};

// The text of a system-log message after its header ("<PRI>stamp ident: "),
// and its priority with the facility.
struct PlixSyslogMessage
{
    int priority = -1;
    std::string ident;
    std::string text;
};
PlixSyslogMessage plixParseSyslog(const std::string& message);
