/* Checks of a static network settings record before anything touches the
 * interface: a record the kernel would accept but that cannot work on a
 * link (a loopback address, a gateway outside the subnet) answers
 * "address not supported" instead of breaking the device's network. */
#include "sysconfig_linux.h"

static uint32_t host_order(const uint8_t bytes[4])
{
    return ((uint32_t)bytes[0] << 24) | ((uint32_t)bytes[1] << 16) | ((uint32_t)bytes[2] << 8) |
           bytes[3];
}

/* 0.0.0.0/8 ("this network", never a source address), loopback, multicast
 * and the reserved 240/4 block that holds the limited broadcast address. */
static int is_host_address(uint32_t address)
{
    unsigned first = address >> 24;
    return first != 0 && first != 127 && first < 224;
}

/* Prefix length of a contiguous mask, or -1. */
static int prefix_of(uint32_t netmask)
{
    uint32_t hosts = ~netmask;
    if ((hosts & (hosts + 1)) != 0) {
        return -1;
    }
    int prefix = 0;
    while (prefix < 32 && (netmask & (0x80000000u >> prefix)) != 0) {
        prefix++;
    }
    return prefix;
}

/* Network and broadcast address of the subnet cannot name one host. With a
 * /31 both addresses are one of them, so /31 is never usable here. */
static int is_subnet_edge(uint32_t address, uint32_t netmask)
{
    uint32_t host = address & ~netmask;
    return host == 0 || host == ~netmask;
}

static const char* check_gateway(const sysconfig_linux_ipv4_t* config)
{
    if (config->gateway == 0) {
        return NULL;
    }
    if ((config->gateway & config->netmask) != (config->address & config->netmask)) {
        return "gateway outside the subnet";
    }
    if (config->gateway == config->address) {
        return "gateway is the address itself";
    }
    if (is_subnet_edge(config->gateway, config->netmask)) {
        return "gateway is the network or broadcast address of the subnet";
    }
    return NULL;
}

const char* sysconfig_linux_check(const sysconfig_ipconfig_t* record, sysconfig_linux_ipv4_t* out)
{
    out->address = host_order(record->address);
    out->netmask = host_order(record->netmask);
    out->gateway = host_order(record->gateway);
    if (!is_host_address(out->address)) {
        return "address is not a unicast host address";
    }
    int prefix = prefix_of(out->netmask);
    if (prefix < 0) {
        return "netmask not contiguous";
    }
    if (prefix == 0 || prefix == 32) {
        return "netmask /0 or /32 not supported";
    }
    out->prefix = (unsigned)prefix;
    if (is_subnet_edge(out->address, out->netmask)) {
        return "address is the network or broadcast address of the subnet";
    }
    return check_gateway(out);
}
