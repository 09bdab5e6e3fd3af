/* A recording double of the device's system-configuration library, preloaded
 * into the service by the integration tests so that its definitions win over
 * the linked library's.
 *
 * Each call appends one line to the file named by PLIX_FAKE_SYSCONFIG_LOG:
 *   ipconfig CALLER ADDRESS NETMASK GATEWAY   (caller 4 hex digits, the
 *                                             record's bytes 8 hex digits each)
 *   sysname CALLER NAME
 *   notify_init
 * sysconfig_set_ipconfig answers PLIX_FAKE_IPCONFIG_ANSWER and
 * sysconfig_set_sysname PLIX_FAKE_SYSNAME_ANSWER (1, applied, when unset). */
#include "sysconfig.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

static void record(const char* format, ...) __attribute__((format(printf, 1, 2)));

static void record(const char* format, ...)
{
    const char* path = getenv("PLIX_FAKE_SYSCONFIG_LOG");
    if (path == NULL || *path == '\0')
        return;
    FILE* log = fopen(path, "a");
    if (log == NULL)
        return;
    va_list args;
    va_start(args, format);
    vfprintf(log, format, args);
    va_end(args);
    fclose(log);
}

static int answer(const char* variable)
{
    const char* text = getenv(variable);
    return (text == NULL || *text == '\0') ? 1 : atoi(text);
}

static void recordBytes(const char* head, const uint8_t* a, const uint8_t* m, const uint8_t* g)
{
    record("%s %02x%02x%02x%02x %02x%02x%02x%02x %02x%02x%02x%02x\n", head, a[0], a[1], a[2], a[3],
           m[0], m[1], m[2], m[3], g[0], g[1], g[2], g[3]);
}

int sysconfig_set_ipconfig(uint16_t caller, const sysconfig_ipconfig_t* config)
{
    char head[32];
    snprintf(head, sizeof head, "ipconfig %04x", (unsigned)caller);
    if (config == NULL)
        record("%s null\n", head);
    else
        recordBytes(head, config->address, config->netmask, config->gateway);
    return answer("PLIX_FAKE_IPCONFIG_ANSWER");
}

int sysconfig_set_sysname(uint16_t caller, const sysconfig_sysname_t* name)
{
    const int length = (name != NULL && name->name != NULL) ? (int)name->length : 0;
    record("sysname %04x %.*s\n", (unsigned)caller, length, length > 0 ? name->name : "");
    return answer("PLIX_FAKE_SYSNAME_ANSWER");
}

int sysconfig_clint_notify_init(void)
{
    record("notify_init\n");
    return 0;
}
