/* Internal interface between the parts of the Linux backend of the
 * system-configuration library. Nothing declared here is exported: the
 * library's symbol map keeps only the sysconfig_* entry points visible. */
#ifndef PLIX_SYSCONFIG_LINUX_H
#define PLIX_SYSCONFIG_LINUX_H

#include "sysconfig.h"

#include <net/if.h>
#include <stdint.h>

#ifndef PLIX_SYSCONFIG_IFNAME
#error "PLIX_SYSCONFIG_IFNAME must name the device's Ethernet interface"
#endif

/* Addresses this backend sets carry this label, so that switching to DHCP
 * removes exactly them and leaves a lease the DHCP client has taken alone.
 * A label must fit an interface name (IFNAMSIZ including the NUL). */
#define SYSCONFIG_LINUX_LABEL PLIX_SYSCONFIG_IFNAME ":sc"
_Static_assert(sizeof SYSCONFIG_LINUX_LABEL <= IFNAMSIZ,
               "PLIX_SYSCONFIG_IFNAME is too long to carry the address label");

/* Default routes this backend sets carry this route protocol number (shown
 * by ip route as "proto 77"); no routing daemon or DHCP client uses it. */
#define SYSCONFIG_LINUX_RTPROT 77

/* Answers of the library's entry points. */
enum {
    SYSCONFIG_FAILED = 0,
    SYSCONFIG_APPLIED = 1,
    SYSCONFIG_UNSUPPORTED = 2,
    SYSCONFIG_DUPLICATED = 3
};

/* Outcome of probing an address on the link. */
enum { ARP_PROBE_FREE, ARP_PROBE_IN_USE, ARP_PROBE_ERROR };

/* A checked static record in the forms the kernel wants. */
typedef struct
{
    uint32_t address; /* host byte order */
    uint32_t netmask;
    uint32_t gateway; /* 0 when there is none */
    unsigned prefix;
} sysconfig_linux_ipv4_t;

/* Logs like the service does: syslog(priority) and a tagged line on stdout. */
void sysconfig_linux_log(int priority, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

/* Dotted text of an address in host byte order; text holds 16 bytes. */
const char* sysconfig_linux_dotted(uint32_t address, char text[16]);

/* NULL when the record is a usable static configuration (filled into out),
 * else the reason it is not. */
const char* sysconfig_linux_check(const sysconfig_ipconfig_t* record, sysconfig_linux_ipv4_t* out);

/* Probes the address on the interface for another owner (RFC 5227). The
 * owner's hardware address is stored in owner when it is in use. */
int sysconfig_linux_arp_probe(int ifindex, uint32_t address, uint8_t owner[6]);

/* Replaces the interface's IPv4 addresses and default route. 1 or 0. */
int sysconfig_linux_netlink_apply(int ifindex, const sysconfig_linux_ipv4_t* config);

/* Removes the addresses and default routes this backend set. 1 or 0. */
int sysconfig_linux_netlink_remove(int ifindex);

#endif
