/* Applies a checked static configuration to the interface through route
 * netlink, and removes it again when the device switches to DHCP. What this
 * backend sets is marked (address label, route protocol) so that the removal
 * touches nothing that the DHCP client or an administrator set. */
#include "sysconfig_linux.h"

#include <arpa/inet.h>
#include <netlink/route/addr.h>
#include <netlink/route/route.h>
#include <string.h>
#include <syslog.h>

/* Which cached objects a removal takes, and how it removes one. */
typedef int (*match_t)(struct nl_object* item, int ifindex);
typedef int (*remove_t)(struct nl_sock* sock, struct nl_object* item);

static int netlink_error(const char* what, int error)
{
    sysconfig_linux_log(LOG_ERR, "sysconfig_set_ipconfig: %s on %s refused: %s", what,
                        PLIX_SYSCONFIG_IFNAME, nl_geterror(error));
    return 0;
}

/* Removing an address also takes away routes and secondary addresses that
 * depended on it; what is already gone needs no second removal. */
static int is_gone(int error)
{
    return error == -NLE_OBJ_NOTFOUND || error == -NLE_NOADDR;
}

static struct nl_addr* ipv4_addr(uint32_t address, unsigned prefix)
{
    uint32_t wire = htonl(address);
    struct nl_addr* result = nl_addr_build(AF_INET, &wire, sizeof wire);
    if (result != NULL) {
        nl_addr_set_prefixlen(result, (int)prefix);
    }
    return result;
}

static int is_default_route_on(struct nl_object* item, int ifindex)
{
    struct rtnl_route* route = (struct rtnl_route*)item;
    struct nl_addr* dst = rtnl_route_get_dst(route);
    struct rtnl_nexthop* hop =
        rtnl_route_get_nnexthops(route) == 1 ? rtnl_route_nexthop_n(route, 0) : NULL;
    return rtnl_route_get_table(route) == RT_TABLE_MAIN &&
           rtnl_route_get_type(route) == RTN_UNICAST &&
           (dst == NULL || nl_addr_get_prefixlen(dst) == 0) && hop != NULL &&
           rtnl_route_nh_get_ifindex(hop) == ifindex;
}

static int is_own_default_route_on(struct nl_object* item, int ifindex)
{
    return is_default_route_on(item, ifindex) &&
           rtnl_route_get_protocol((struct rtnl_route*)item) == SYSCONFIG_LINUX_RTPROT;
}

static int remove_route(struct nl_sock* sock, struct nl_object* item)
{
    return rtnl_route_delete(sock, (struct rtnl_route*)item, 0);
}

static int is_ipv4_addr_on(struct nl_object* item, int ifindex)
{
    struct rtnl_addr* addr = (struct rtnl_addr*)item;
    return rtnl_addr_get_family(addr) == AF_INET && rtnl_addr_get_ifindex(addr) == ifindex;
}

static int is_own_ipv4_addr_on(struct nl_object* item, int ifindex)
{
    const char* label = rtnl_addr_get_label((struct rtnl_addr*)item);
    return is_ipv4_addr_on(item, ifindex) && label != NULL &&
           strcmp(label, SYSCONFIG_LINUX_LABEL) == 0;
}

static int remove_addr(struct nl_sock* sock, struct nl_object* item)
{
    return rtnl_addr_delete(sock, (struct rtnl_addr*)item, 0);
}

/* Removes every object of the cache that matches; takes the cache. */
static int remove_matching(struct nl_sock* sock, struct nl_cache* cache, int ifindex, match_t match,
                           remove_t remove, const char* what)
{
    int error = 0;
    for (struct nl_object* item = nl_cache_get_first(cache); item != NULL && error >= 0;
         item = nl_cache_get_next(item)) {
        if (match(item, ifindex)) {
            error = remove(sock, item);
            error = is_gone(error) ? 0 : error;
        }
    }
    nl_cache_free(cache);
    return error < 0 ? netlink_error(what, error) : 1;
}

static int remove_default_routes(struct nl_sock* sock, int ifindex, match_t match)
{
    struct nl_cache* cache = NULL;
    int error = rtnl_route_alloc_cache(sock, AF_INET, 0, &cache);
    if (error < 0) {
        return netlink_error("reading the routes", error);
    }
    return remove_matching(sock, cache, ifindex, match, remove_route, "removing the default route");
}

static int remove_addresses(struct nl_sock* sock, int ifindex, match_t match)
{
    struct nl_cache* cache = NULL;
    int error = rtnl_addr_alloc_cache(sock, &cache);
    if (error < 0) {
        return netlink_error("reading the addresses", error);
    }
    return remove_matching(sock, cache, ifindex, match, remove_addr, "removing an address");
}

static int add_address(struct nl_sock* sock, int ifindex, const sysconfig_linux_ipv4_t* config)
{
    struct rtnl_addr* addr = rtnl_addr_alloc();
    struct nl_addr* local = ipv4_addr(config->address, config->prefix);
    struct nl_addr* broadcast = ipv4_addr(config->address | ~config->netmask, 32);
    int error = -NLE_NOMEM;
    if (addr != NULL && local != NULL && broadcast != NULL) {
        rtnl_addr_set_ifindex(addr, ifindex);
        rtnl_addr_set_family(addr, AF_INET);
        rtnl_addr_set_label(addr, SYSCONFIG_LINUX_LABEL);
        rtnl_addr_set_local(addr, local);
        rtnl_addr_set_broadcast(addr, broadcast);
        error = rtnl_addr_add(sock, addr, 0);
    }
    nl_addr_put(broadcast);
    nl_addr_put(local);
    rtnl_addr_put(addr);
    return error < 0 ? netlink_error("adding the address", error) : 1;
}

static int add_default_route(struct nl_sock* sock, int ifindex, uint32_t gateway)
{
    struct rtnl_route* route = rtnl_route_alloc();
    struct rtnl_nexthop* hop = rtnl_route_nh_alloc();
    struct nl_addr* dst = ipv4_addr(0, 0);
    struct nl_addr* via = ipv4_addr(gateway, 32);
    int error = -NLE_NOMEM;
    if (route != NULL && hop != NULL && dst != NULL && via != NULL) {
        rtnl_route_set_family(route, AF_INET);
        rtnl_route_set_table(route, RT_TABLE_MAIN);
        rtnl_route_set_protocol(route, SYSCONFIG_LINUX_RTPROT);
        rtnl_route_set_scope(route, RT_SCOPE_UNIVERSE);
        rtnl_route_set_type(route, RTN_UNICAST);
        rtnl_route_set_dst(route, dst);
        rtnl_route_nh_set_ifindex(hop, ifindex);
        rtnl_route_nh_set_gateway(hop, via);
        rtnl_route_add_nexthop(route, hop);
        hop = NULL; /* the route owns it now */
        error = rtnl_route_add(sock, route, NLM_F_REPLACE);
    }
    nl_addr_put(via);
    nl_addr_put(dst);
    if (hop != NULL) {
        rtnl_route_nh_free(hop);
    }
    rtnl_route_put(route);
    return error < 0 ? netlink_error("adding the default route", error) : 1;
}

static struct nl_sock* open_route_socket(void)
{
    struct nl_sock* sock = nl_socket_alloc();
    if (sock == NULL) {
        netlink_error("opening route netlink", -NLE_NOMEM);
        return NULL;
    }
    int error = nl_connect(sock, NETLINK_ROUTE);
    if (error < 0) {
        nl_socket_free(sock);
        netlink_error("opening route netlink", error);
        return NULL;
    }
    return sock;
}

/* Routes go before addresses: removing an address may leave a route through
 * a gateway that is no longer reachable, which the kernel keeps. A failure
 * midway leaves the interface as far as it got; the service rolls the value
 * back and a later commit applies the whole record again. */
int sysconfig_linux_netlink_apply(int ifindex, const sysconfig_linux_ipv4_t* config)
{
    struct nl_sock* sock = open_route_socket();
    if (sock == NULL) {
        return 0;
    }
    int result = remove_default_routes(sock, ifindex, is_default_route_on) &&
                 remove_addresses(sock, ifindex, is_ipv4_addr_on) &&
                 add_address(sock, ifindex, config) &&
                 (config->gateway == 0 || add_default_route(sock, ifindex, config->gateway));
    nl_socket_free(sock);
    return result;
}

int sysconfig_linux_netlink_remove(int ifindex)
{
    struct nl_sock* sock = open_route_socket();
    if (sock == NULL) {
        return 0;
    }
    int result = remove_default_routes(sock, ifindex, is_own_default_route_on) &&
                 remove_addresses(sock, ifindex, is_own_ipv4_addr_on);
    nl_socket_free(sock);
    return result;
}
