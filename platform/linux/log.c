/* Logging of the Linux backend, in the service's convention: every line goes
 * to syslog and to standard output behind its level tag. */
#include "sysconfig_linux.h"

#include <stdarg.h>
#include <stdio.h>
#include <syslog.h>

/* The level tag of each syslog priority, from LOG_EMERG to LOG_DEBUG. */
static const char* const tags[] = {"[ERR] ", "[ERR] ", "[ERR] ", "[ERR] ",
                                   "[NOT] ", "[NOT] ", "[NFO] ", "[DEB] "};

void sysconfig_linux_log(int priority, const char* format, ...)
{
    char text[512];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    syslog(priority, "%s", text);
    printf("%s%s\n", tags[LOG_PRI(priority)], text);
    /* The caller may leave through _exit or a signal; the line must not be
     * lost in the buffer. */
    fflush(stdout);
}

const char* sysconfig_linux_dotted(uint32_t address, char text[16])
{
    snprintf(text, 16, "%u.%u.%u.%u", (unsigned)(address >> 24) & 0xffu,
             (unsigned)(address >> 16) & 0xffu, (unsigned)(address >> 8) & 0xffu,
             (unsigned)address & 0xffu);
    return text;
}
