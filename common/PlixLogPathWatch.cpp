#include "PlixLogPathWatch.h"

#include <cerrno>
#include <climits>
#include <ctime>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace {
constexpr auto lookInterval = std::chrono::seconds(1);
// As many levels of links as the kernel follows.
constexpr int linkLevels = 40;
constexpr uint32_t directoryChanges = IN_CREATE | IN_DELETE | IN_MOVED_TO | IN_MOVED_FROM |
                                      IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

std::string directoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The target of the link at path, relative targets taken from the link's
// directory; empty when path is no link.
std::string linkTarget(const std::string& path)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    if (length <= 0 || static_cast<std::size_t>(length) >= sizeof target) {
        return {};
    }
    const std::string text(target, static_cast<std::size_t>(length));
    return text[0] == '/' ? text : directoryOf(path) + "/" + text;
}
} // namespace

PlixLogPathWatch::Clock::time_point PlixLogPathWatch::now()
{
    timespec tick{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &tick);
    return Clock::time_point(std::chrono::seconds(tick.tv_sec) +
                             std::chrono::nanoseconds(tick.tv_nsec));
}

PlixLogPathWatch::PlixLogPathWatch(std::string path) : mPath(std::move(path))
{
}

PlixLogPathWatch::~PlixLogPathWatch()
{
    disarm();
}

bool PlixLogPathWatch::due(Clock::time_point now)
{
    if (mLooked && !changed() && now - mLastLook < lookInterval) {
        return false;
    }
    arm(now);
    return true;
}

void PlixLogPathWatch::arm(Clock::time_point now)
{
    disarm();
    mLastLook = now;
    mLooked = true;
    mNotify = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (mNotify < 0) {
        return;
    }
    std::string step = mPath;
    for (int level = 0; level < linkLevels && !step.empty(); ++level) {
        watchNearestDirectory(directoryOf(step));
        step = linkTarget(step);
    }
}

void PlixLogPathWatch::disarm()
{
    if (mNotify >= 0) {
        close(mNotify);
        mNotify = -1;
    }
}

bool PlixLogPathWatch::changed()
{
    if (mNotify < 0) {
        return false;
    }
    // The events themselves do not matter (a lost one neither): any means a
    // fresh look.
    alignas(inotify_event) char events[4096];
    bool any = false;
    while (read(mNotify, events, sizeof events) > 0) {
        any = true;
    }
    return any;
}

void PlixLogPathWatch::watchNearestDirectory(std::string directory)
{
    while (inotify_add_watch(mNotify, directory.c_str(), directoryChanges) < 0 &&
           (errno == ENOENT || errno == ENOTDIR) && directory != "/" && directory != ".") {
        directory = directoryOf(directory);
    }
}
