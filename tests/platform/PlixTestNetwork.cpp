#include "PlixTestNetwork.h"

#include "PlixTestChild.h"

#include <cstdio>
#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

// Every ip command is bounded, so that a stuck one cannot hang the tests.
#define IP "timeout 10 ip "

namespace {
int counter = 0;
}

PlixTestNetwork::PlixTestNetwork()
{
    std::string unique = std::to_string(getpid()) + "x" + std::to_string(++counter);
    deviceNs = "plixdev" + unique;
    peerNs = "plixpeer" + unique;
}

PlixTestNetwork::~PlixTestNetwork()
{
    if (created) {
        shell(IP "netns del " + deviceNs + " 2>/dev/null");
        shell(IP "netns del " + peerNs + " 2>/dev/null");
    }
}

std::string PlixTestNetwork::unavailableReason()
{
    if (geteuid() != 0) {
        return "needs root to make network namespaces";
    }
    int status = 0;
    shell(IP "netns list >/dev/null 2>&1", &status);
    return status == 0 ? "" : "ip netns is not available";
}

bool PlixTestNetwork::create(bool withLink)
{
    int status = 0;
    created = true;
    shell(IP "netns add " + deviceNs + " && " IP "netns add " + peerNs, &status);
    if (status != 0 || !withLink) {
        return status == 0;
    }
    shell(IP "-n " + deviceNs +
              " link add " PLIX_SYSCONFIG_IFNAME " type veth peer name peer0 netns " + peerNs +
              " && " IP "-n " + deviceNs + " link set " PLIX_SYSCONFIG_IFNAME " up && " IP "-n " +
              peerNs + " link set peer0 up",
          &status);
    return status == 0;
}

std::string PlixTestNetwork::device(const std::string& arguments) const
{
    return ip(deviceNs, arguments);
}

std::string PlixTestNetwork::peer(const std::string& arguments) const
{
    return ip(peerNs, arguments);
}

std::string PlixTestNetwork::ip(const std::string& ns, const std::string& arguments) const
{
    return shell(IP "-n " + ns + " " + arguments);
}

std::string PlixTestNetwork::inDevice(const std::function<int()>& body) const
{
    std::string path = "/var/run/netns/" + deviceNs;
    PlixTestChild::Result result = PlixTestChild::run([&path, &body]() {
        int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0 || setns(fd, CLONE_NEWNET) != 0) {
            return std::string("setns failed");
        }
        close(fd);
        return std::to_string(body());
    });
    return result.finished ? result.output : "no child";
}

std::string PlixTestNetwork::shell(const std::string& command, int* status)
{
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        if (status != nullptr) {
            *status = -1;
        }
        return output;
    }
    char buffer[256];
    size_t length;
    while ((length = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        output.append(buffer, length);
    }
    int result = pclose(pipe);
    if (status != nullptr) {
        *status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    }
    return output;
}
