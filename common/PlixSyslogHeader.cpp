#include "PlixSyslogHeader.h"

#include <cerrno>
#include <cstdio>
#include <syslog.h>

namespace {
// The month names of the C locale, whatever locale the process runs in.
constexpr const char* monthNames[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
} // namespace

std::string PlixSyslogHeader::priorityText(int priority)
{
    int value = priority & (LOG_PRIMASK | LOG_FACMASK);
    if ((value & LOG_FACMASK) == 0) {
        value |= LOG_USER;
    }
    return "<" + std::to_string(value) + ">";
}

const std::string& PlixSyslogHeader::stampAndIdent(std::time_t now)
{
    if (now == mSecond) {
        return mStamp;
    }
    mSecond = now;
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "%s %2d %02d:%02d:%02d ", monthNames[local.tm_mon % 12],
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    mStamp.assign(stamp).append(program_invocation_short_name).append(": ");
    return mStamp;
}
