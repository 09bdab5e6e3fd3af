#pragma once

#include <chrono>
#include <string>

// Tells when the system logger's socket may have appeared at its path while
// no logger is connected. The path may be a socket or a symbolic link (of
// several levels) to one in a directory that may not exist yet, so every
// directory on the way is watched: the path's own, each link target's, or
// the nearest one of them that exists. Any change there, or a second gone
// by (for what a watch cannot see, such as a mount), is worth a look; a
// message in between costs one non-blocking read.
class PlixLogPathWatch
{
public:
    using Clock = std::chrono::steady_clock;

    // The monotonic time at the kernel's tick, which costs no system call:
    // exact enough for a look once a second.
    static Clock::time_point now();

    explicit PlixLogPathWatch(std::string path);
    ~PlixLogPathWatch();
    PlixLogPathWatch(const PlixLogPathWatch&) = delete;
    PlixLogPathWatch& operator=(const PlixLogPathWatch&) = delete;

    // Whether to look at the path now; if so the watches are renewed first,
    // so a change after the look is seen again.
    bool due(Clock::time_point now);
    // Watches the path from now on (the logger was just found absent).
    void arm(Clock::time_point now);
    // Stops watching while a logger is connected.
    void disarm();

private:
    bool changed();
    void watchNearestDirectory(std::string directory);

    std::string mPath;
    int mNotify = -1;
    Clock::time_point mLastLook;
    bool mLooked = false;
};
