#include "PlixLog.h"

#include "PlixSystemLog.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace {
// Every tag is this long, so the tag and the text share one buffer.
constexpr std::size_t tagLength = 6;

// The longest a message may keep the main loop waiting for the system
// logger; one that did not take a message by then is stalled.
constexpr std::chrono::milliseconds loggerPatience(10);

// Never destroyed, so a message logged while the process ends still has it.
PlixSystemLog& systemLog()
{
    static PlixSystemLog* const log = new PlixSystemLog(_PATH_LOG, loggerPatience);
    return *log;
}

PlixLogSink& logSink()
{
    static PlixLogSink sink;
    return sink;
}

// Writes the line that begins at line (tag, text, room for the line feed)
// to the system log and to standard output in one write.
void emit(int priority, char* line, std::size_t textLength)
{
    char* text = line + tagLength;
    if (logSink()) {
        logSink()(priority, std::string(text, textLength));
        return;
    }
    const std::string notice = systemLog().write(priority, text, textLength);
    if (!notice.empty()) {
        std::fprintf(stdout, "%s%s\n", plixLogTag(LOG_NOTICE), notice.c_str());
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
    if (logSink()) {
        return;
    }
    va_list args;
    va_start(args, format);
    std::vfprintf(stdout, format, args);
    va_end(args);
}

void plixSetLogSink(PlixLogSink sink)
{
    logSink() = std::move(sink);
}

void plixLineBufferedOutput()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}
