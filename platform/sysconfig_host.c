/* Host build of the system-configuration library: it changes nothing on the
 * machine, logs every call at info level and reports success, so the service
 * runs on any Linux machine. */
#include "sysconfig.h"

#include <stdio.h>
#include <syslog.h>

static void log_info(const char* text)
{
    syslog(LOG_INFO, "%s", text);
    printf("[NFO] %s\n", text);
}

int sysconfig_set_ipconfig(uint16_t caller, const sysconfig_ipconfig_t* config)
{
    char line[128];
    if (config == NULL) {
        snprintf(line, sizeof line, "sysconfig_set_ipconfig caller %04x record (none)",
                 (unsigned)caller);
    } else {
        const uint8_t *a = config->address, *m = config->netmask, *g = config->gateway;
        snprintf(line, sizeof line,
                 "sysconfig_set_ipconfig caller %04x record %02x%02x%02x%02x %02x%02x%02x%02x "
                 "%02x%02x%02x%02x",
                 (unsigned)caller, a[0], a[1], a[2], a[3], m[0], m[1], m[2], m[3], g[0], g[1], g[2],
                 g[3]);
    }
    log_info(line);
    return 1;
}

int sysconfig_set_sysname(uint16_t caller, const sysconfig_sysname_t* name)
{
    char line[384];
    int length = 0;
    const char* text = "";
    if (name != NULL && name->name != NULL) {
        text = name->name;
        length = name->length > 256 ? 256 : (int)name->length;
    }
    snprintf(line, sizeof line, "sysconfig_set_sysname caller %04x name %.*s", (unsigned)caller,
             length, text);
    log_info(line);
    return 1;
}

int sysconfig_clint_notify_init(void)
{
    log_info("sysconfig_clint_notify_init");
    return 1;
}
