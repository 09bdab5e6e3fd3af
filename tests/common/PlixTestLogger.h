#pragma once

#include <string>

// A system logger for one test: a datagram socket bound at a path, whose
// messages the test reads. Every read has a time bound.
class PlixTestLogger
{
public:
    // Binds at path; valid() tells whether that worked.
    explicit PlixTestLogger(const std::string& path);
    ~PlixTestLogger();
    PlixTestLogger(const PlixTestLogger&) = delete;
    PlixTestLogger& operator=(const PlixTestLogger&) = delete;

    bool valid() const { return mSocket >= 0; }
    // The next message, waiting up to 5 s; empty when none came.
    std::string receive() const;
    // The next message if one is queued now; empty otherwise.
    std::string receiveQueued() const;
    // Every message queued now.
    int drain() const;

private:
    int mSocket = -1;
};

// A fresh directory under /tmp, removed with what it holds at the end.
class PlixTestLogDir
{
public:
    PlixTestLogDir();
    ~PlixTestLogDir();
    PlixTestLogDir(const PlixTestLogDir&) = delete;
    PlixTestLogDir& operator=(const PlixTestLogDir&) = delete;

    std::string file(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath;
};
