/* Duplicate address detection before a static address is taken (RFC 5227):
 * ARP probes with a zero sender address, so that no host's ARP cache is
 * changed by an address that may not be ours to take. Any host that uses
 * the address, or probes for it at the same time, makes it "in use". The
 * whole probe takes one second, a bounded wait the service's caller can
 * afford; the random initial delay of the RFC is left out because one
 * device configures its one interface. */
#include "sysconfig_linux.h"

#include <arpa/inet.h>
#include <errno.h>
#include <linux/if_packet.h>
#include <netinet/if_ether.h>
#include <poll.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

enum { PROBE_COUNT = 3, PROBE_INTERVAL_MS = 300, PROBE_TOTAL_MS = 1000 };

typedef struct
{
    int fd;
    int ifindex;
    uint8_t mac[ETH_ALEN];
    uint8_t address[4]; /* network byte order, as on the wire */
} probe_t;

/* 64 bits: on the 32-bit device a long of milliseconds overflows after
 * 24 days of uptime. */
static int64_t now_ms(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

static int probe_error(const char* what)
{
    sysconfig_linux_log(LOG_ERR, "sysconfig_set_ipconfig: ARP probe on %s failed: %s: %s",
                        PLIX_SYSCONFIG_IFNAME, what, strerror(errno));
    return -1;
}

/* A packet socket bound to the interface, and the interface's own hardware
 * address, which must not count as another owner. */
static int open_probe(probe_t* probe)
{
    probe->fd = socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, htons(ETH_P_ARP));
    if (probe->fd < 0) {
        return probe_error("socket");
    }
    struct sockaddr_ll local = {
        .sll_family = AF_PACKET, .sll_protocol = htons(ETH_P_ARP), .sll_ifindex = probe->ifindex};
    if (bind(probe->fd, (struct sockaddr*)&local, sizeof local) < 0) {
        return probe_error("bind");
    }
    struct ifreq request;
    memset(&request, 0, sizeof request);
    strncpy(request.ifr_name, PLIX_SYSCONFIG_IFNAME, sizeof request.ifr_name - 1);
    if (ioctl(probe->fd, SIOCGIFHWADDR, &request) < 0) {
        return probe_error("hardware address");
    }
    memcpy(probe->mac, request.ifr_hwaddr.sa_data, ETH_ALEN);
    return 0;
}

static int send_probe(const probe_t* probe)
{
    struct ether_arp packet;
    memset(&packet, 0, sizeof packet);
    packet.arp_hrd = htons(ARPHRD_ETHER);
    packet.arp_pro = htons(ETH_P_IP);
    packet.arp_hln = ETH_ALEN;
    packet.arp_pln = 4;
    packet.arp_op = htons(ARPOP_REQUEST);
    memcpy(packet.arp_sha, probe->mac, ETH_ALEN);
    memcpy(packet.arp_tpa, probe->address, 4);
    struct sockaddr_ll to = {.sll_family = AF_PACKET,
                             .sll_protocol = htons(ETH_P_ARP),
                             .sll_ifindex = probe->ifindex,
                             .sll_halen = ETH_ALEN};
    memset(to.sll_addr, 0xff, ETH_ALEN);
    if (sendto(probe->fd, &packet, sizeof packet, 0, (struct sockaddr*)&to, sizeof to) < 0) {
        return probe_error("send");
    }
    return 0;
}

/* Another host uses the address when it sends ARP from it; it wants the
 * address too when it probes for it. */
static int is_conflict(const probe_t* probe, const struct ether_arp* packet)
{
    static const uint8_t none[4];
    if (ntohs(packet->arp_hrd) != ARPHRD_ETHER || ntohs(packet->arp_pro) != ETH_P_IP ||
        packet->arp_hln != ETH_ALEN || packet->arp_pln != 4 ||
        memcmp(packet->arp_sha, probe->mac, ETH_ALEN) == 0) {
        return 0;
    }
    if (memcmp(packet->arp_spa, probe->address, 4) == 0) {
        return 1;
    }
    return ntohs(packet->arp_op) == ARPOP_REQUEST && memcmp(packet->arp_spa, none, 4) == 0 &&
           memcmp(packet->arp_tpa, probe->address, 4) == 0;
}

/* Reads what arrived; 1 with the owner filled in on a conflict. */
static int receive_answer(const probe_t* probe, uint8_t owner[6])
{
    struct ether_arp packet;
    struct sockaddr_ll from;
    socklen_t from_length = sizeof from;
    ssize_t length = recvfrom(probe->fd, &packet, sizeof packet, MSG_DONTWAIT,
                              (struct sockaddr*)&from, &from_length);
    if (length < (ssize_t)sizeof packet || from.sll_pkttype == PACKET_OUTGOING ||
        !is_conflict(probe, &packet)) {
        return 0;
    }
    memcpy(owner, packet.arp_sha, ETH_ALEN);
    return 1;
}

static int run_probe(const probe_t* probe, uint8_t owner[6])
{
    int64_t start = now_ms();
    int sent = 0;
    for (int64_t now = start; now - start < PROBE_TOTAL_MS; now = now_ms()) {
        if (sent < PROBE_COUNT && now - start >= (int64_t)sent * PROBE_INTERVAL_MS) {
            if (send_probe(probe) < 0) {
                return ARP_PROBE_ERROR;
            }
            sent++;
        }
        int64_t until =
            sent < PROBE_COUNT ? start + (int64_t)sent * PROBE_INTERVAL_MS : start + PROBE_TOTAL_MS;
        struct pollfd ready = {.fd = probe->fd, .events = POLLIN};
        int wait_ms = until > now ? (int)(until - now) : 0;
        if (poll(&ready, 1, wait_ms) > 0 && receive_answer(probe, owner)) {
            return ARP_PROBE_IN_USE;
        }
    }
    return ARP_PROBE_FREE;
}

int sysconfig_linux_arp_probe(int ifindex, uint32_t address, uint8_t owner[6])
{
    probe_t probe = {.fd = -1, .ifindex = ifindex};
    uint32_t wire = htonl(address);
    memcpy(probe.address, &wire, 4);
    int result = open_probe(&probe) < 0 ? ARP_PROBE_ERROR : run_probe(&probe, owner);
    if (probe.fd >= 0) {
        close(probe.fd);
    }
    return result;
}
