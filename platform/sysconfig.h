/* The device's system-configuration library: network settings, station name
 * and the control-panel notification. The service links it dynamically, so a
 * device's own build replaces the host build shipped here. */
#ifndef PLIX_SYSCONFIG_H
#define PLIX_SYSCONFIG_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct
{
    uint8_t address[4];
    uint8_t netmask[4];
    uint8_t gateway[4];
} sysconfig_ipconfig_t; /* 12 bytes, first dotted part first */
typedef struct
{
    const char* name;
    size_t length;
} sysconfig_sysname_t;
int sysconfig_set_ipconfig(
    uint16_t caller,
    const sysconfig_ipconfig_t*
        config); /* 1 applied, 2 address not supported, 3 address duplicated, other failure */
int sysconfig_set_sysname(uint16_t caller, const sysconfig_sysname_t* name); /* 1 applied */
int sysconfig_clint_notify_init(void);

#ifdef __cplusplus
}
#endif

#endif
