#include "PlixLog.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>

namespace {
// Every tag is this long, so the tag and the text share one buffer.
constexpr std::size_t tagLength = 6;

// With no log socket the C library creates a socket, fails to connect it and
// closes it again for every message, and then drops the message: several
// times the cost of the rest of the line. So a message is handed over only
// while the socket exists. A look-up of its path per message would cost
// nearly as much; a watch on its directory reports the socket appearing and
// going away for one non-blocking read per message.
class LogSocketWatch
{
public:
    LogSocketWatch() : watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        const std::string path(_PATH_LOG);
        const std::string directory = path.substr(0, path.rfind('/') + 1);
        const uint32_t changes = IN_CREATE | IN_DELETE | IN_MOVED_TO | IN_MOVED_FROM;
        if (watch >= 0 && inotify_add_watch(watch, directory.c_str(), changes) < 0) {
            close(watch);
            watch = -1;
        }
        present = exists();
    }

    bool socketPresent()
    {
        if (watch < 0) {
            return exists();
        }
        // Any change in the directory (or a lost event) means a fresh look.
        alignas(inotify_event) char events[4096];
        bool changed = false;
        while (read(watch, events, sizeof events) > 0) {
            changed = true;
        }
        if (changed) {
            present = exists();
        }
        return present;
    }

private:
    static bool exists() { return access(_PATH_LOG, F_OK) == 0; }

    int watch;
    bool present = false;
};

bool logSocketPresent()
{
    static LogSocketWatch watch;
    return watch.socketPresent();
}

// Writes the line that begins at line (tag, text, room for the line feed)
// to the system log and to standard output in one write.
void emit(int priority, char* line, std::size_t textLength)
{
    char* text = line + tagLength;
    if (logSocketPresent()) {
        syslog(priority, "%s", text);
    }
    text[textLength] = '\n';
    std::fwrite(line, 1, tagLength + textLength + 1, stdout);
}
} // namespace

const char* plixLogTag(int priority)
{
    switch (priority) {
    case LOG_EMERG:
    case LOG_ALERT:
    case LOG_CRIT:
    case LOG_ERR:
        return "[ERR] ";
    case LOG_INFO:
        return "[NFO] ";
    case LOG_DEBUG:
        return "[DEB] ";
    default:
        return "[NOT] ";
    }
}

void plixLog(int priority, const char* format, ...)
{
    char stackLine[512];
    const std::size_t room = sizeof stackLine - tagLength - 1;
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(stackLine + tagLength, room, format, args);
    va_end(args);
    std::string heapLine;
    char* line = stackLine;
    if (length < 0) {
        length = static_cast<int>(std::strlen(format));
        heapLine.assign(tagLength, ' ').append(format).push_back('\0');
        line = heapLine.data();
    } else if (static_cast<std::size_t>(length) >= room) {
        heapLine.resize(tagLength + static_cast<std::size_t>(length) + 1);
        line = heapLine.data();
        vsnprintf(line + tagLength, heapLine.size() - tagLength, format, again);
    }
    va_end(again);
    std::memcpy(line, plixLogTag(priority), tagLength);
    emit(priority, line, static_cast<std::size_t>(length));
}

void plixTrace(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::vfprintf(stdout, format, args);
    va_end(args);
}

void plixLineBufferedOutput()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}
