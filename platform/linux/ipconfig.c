/* sysconfig_set_ipconfig of the Linux backend: twelve zero bytes hand the
 * interface over to the DHCP client; any other record is checked, probed
 * for another owner on the link and then applied. */
#include "sysconfig_linux.h"

#include <stdio.h>
#include <string.h>
#include <syslog.h>

static const char* record_text(const sysconfig_linux_ipv4_t* config, char text[64])
{
    char address[16], netmask[16], gateway[16];
    snprintf(text, 64, "%s netmask %s gateway %s", sysconfig_linux_dotted(config->address, address),
             sysconfig_linux_dotted(config->netmask, netmask),
             sysconfig_linux_dotted(config->gateway, gateway));
    return text;
}

static int interface_index(void)
{
    int ifindex = (int)if_nametoindex(PLIX_SYSCONFIG_IFNAME);
    if (ifindex == 0) {
        sysconfig_linux_log(LOG_ERR, "sysconfig_set_ipconfig: interface %s not found",
                            PLIX_SYSCONFIG_IFNAME);
    }
    return ifindex;
}

static int switch_to_dhcp(void)
{
    int ifindex = interface_index();
    if (ifindex == 0 || !sysconfig_linux_netlink_remove(ifindex)) {
        return SYSCONFIG_FAILED;
    }
    sysconfig_linux_log(LOG_INFO, "sysconfig_set_ipconfig: static configuration of %s removed",
                        PLIX_SYSCONFIG_IFNAME);
    return SYSCONFIG_APPLIED;
}

static int probe_and_apply(const sysconfig_linux_ipv4_t* config, const char* text)
{
    int ifindex = interface_index();
    if (ifindex == 0) {
        return SYSCONFIG_FAILED;
    }
    uint8_t owner[6];
    int probe = sysconfig_linux_arp_probe(ifindex, config->address, owner);
    if (probe == ARP_PROBE_ERROR) {
        return SYSCONFIG_FAILED;
    }
    if (probe == ARP_PROBE_IN_USE) {
        char address[16];
        sysconfig_linux_log(LOG_NOTICE,
                            "sysconfig_set_ipconfig: %s is in use by %02x:%02x:%02x:%02x:%02x:%02x",
                            sysconfig_linux_dotted(config->address, address), owner[0], owner[1],
                            owner[2], owner[3], owner[4], owner[5]);
        return SYSCONFIG_DUPLICATED;
    }
    if (!sysconfig_linux_netlink_apply(ifindex, config)) {
        return SYSCONFIG_FAILED;
    }
    sysconfig_linux_log(LOG_INFO, "sysconfig_set_ipconfig: %s set to %s", PLIX_SYSCONFIG_IFNAME,
                        text);
    return SYSCONFIG_APPLIED;
}

int sysconfig_set_ipconfig(uint16_t caller, const sysconfig_ipconfig_t* config)
{
    static const sysconfig_ipconfig_t dhcp;
    (void)caller; /* the service always calls with its one identifier */
    if (config == NULL) {
        sysconfig_linux_log(LOG_ERR, "sysconfig_set_ipconfig: no record");
        return SYSCONFIG_FAILED;
    }
    if (memcmp(config, &dhcp, sizeof dhcp) == 0) {
        return switch_to_dhcp();
    }
    sysconfig_linux_ipv4_t checked;
    char text[64];
    const char* reason = sysconfig_linux_check(config, &checked);
    if (reason != NULL) {
        sysconfig_linux_log(LOG_NOTICE, "sysconfig_set_ipconfig: %s not supported: %s",
                            record_text(&checked, text), reason);
        return SYSCONFIG_UNSUPPORTED;
    }
    return probe_and_apply(&checked, record_text(&checked, text));
}
