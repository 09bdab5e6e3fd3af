#include "PlixLog.h"

#include <cstdarg>
#include <cstdio>
#include <string>

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
    char stackBuffer[512];
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int length = vsnprintf(stackBuffer, sizeof stackBuffer, format, args);
    va_end(args);
    std::string heapBuffer;
    const char* text = stackBuffer;
    if (length >= static_cast<int>(sizeof stackBuffer)) {
        heapBuffer.resize(static_cast<size_t>(length) + 1);
        vsnprintf(heapBuffer.data(), heapBuffer.size(), format, again);
        text = heapBuffer.c_str();
    }
    va_end(again);
    if (length < 0) {
        text = format;
    }
    syslog(priority, "%s", text);
    std::fputs(plixLogTag(priority), stdout);
    std::fputs(text, stdout);
    std::fputc('\n', stdout);
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
