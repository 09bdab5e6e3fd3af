// The Linux build of sysconfig_set_ipconfig, run inside namespaces made by
// each test on a private veth link.
#include "PlixTestChild.h"
#include "PlixTestNetwork.h"
#include "sysconfig.h"

#include <gtest/gtest.h>

#include <array>
#include <linux/capability.h>
#include <memory>
#include <unistd.h>

namespace {
const uint16_t caller = 0xFE02;

sysconfig_ipconfig_t record(std::array<uint8_t, 4> address, std::array<uint8_t, 4> netmask,
                            std::array<uint8_t, 4> gateway)
{
    sysconfig_ipconfig_t result{};
    std::copy(address.begin(), address.end(), result.address);
    std::copy(netmask.begin(), netmask.end(), result.netmask);
    std::copy(gateway.begin(), gateway.end(), result.gateway);
    return result;
}

const sysconfig_ipconfig_t staticRecord =
    record({192, 0, 2, 10}, {255, 255, 255, 0}, {192, 0, 2, 1});
const sysconfig_ipconfig_t dhcpRecord{};

// Address, broadcast, scope and label of each IPv4 address of the interface.
const std::string addressesCommand = "-4 -o addr show dev " PLIX_SYSCONFIG_IFNAME
                                     " | tr -d '\\\\' | awk '{print $4, $5, $6, $7, $8, $9}'";
const std::string defaultRouteCommand = "-4 route show default";
const std::string appliedAddress =
    "192.0.2.10/24 brd 192.0.2.255 scope global " PLIX_SYSCONFIG_IFNAME ":sc\n";
const std::string appliedRoute = "default via 192.0.2.1 dev " PLIX_SYSCONFIG_IFNAME " proto 77 \n";
} // namespace

class SysconfigSetIpconfigTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string reason = PlixTestNetwork::unavailableReason();
        if (!reason.empty()) {
            GTEST_SKIP() << reason;
        }
        network = std::make_unique<PlixTestNetwork>();
        if (!network->create(withLink())) {
            GTEST_SKIP() << "network namespaces cannot be made here";
        }
    }

    virtual bool withLink() const { return true; }

    std::string apply(const sysconfig_ipconfig_t& config)
    {
        return network->inDevice([&config]() { return sysconfig_set_ipconfig(caller, &config); });
    }

    // The answer and the lines the library printed while giving it.
    std::pair<std::string, std::string> applyCapturing(const sysconfig_ipconfig_t& config)
    {
        testing::internal::CaptureStdout();
        std::string answer = apply(config);
        return {answer, testing::internal::GetCapturedStdout()};
    }

    std::unique_ptr<PlixTestNetwork> network;
};

TEST_F(SysconfigSetIpconfigTest, StaticAddressIsAppliedWithPrefixAndDefaultRoute)
{
    auto [answer, output] = applyCapturing(staticRecord);
    EXPECT_EQ("1", answer);
    EXPECT_EQ("[NFO] sysconfig_set_ipconfig: " PLIX_SYSCONFIG_IFNAME
              " set to 192.0.2.10 netmask 255.255.255.0 gateway 192.0.2.1\n",
              output);
    EXPECT_EQ(appliedAddress, network->device(addressesCommand));
    EXPECT_EQ(appliedRoute, network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, StaticAddressReplacesEarlierAddressesAndDefaultRoute)
{
    network->device("addr add 10.1.2.3/8 dev " PLIX_SYSCONFIG_IFNAME);
    network->device("addr add 198.51.100.7/24 dev " PLIX_SYSCONFIG_IFNAME);
    network->device("route add default via 10.0.0.1");
    ASSERT_EQ("default via 10.0.0.1 dev " PLIX_SYSCONFIG_IFNAME " \n",
              network->device(defaultRouteCommand));
    EXPECT_EQ("1", apply(staticRecord));
    EXPECT_EQ(appliedAddress, network->device(addressesCommand));
    EXPECT_EQ(appliedRoute, network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, ApplyingTheSameAddressAgainAnswers1)
{
    ASSERT_EQ("1", apply(staticRecord));
    EXPECT_EQ("1", apply(staticRecord));
    EXPECT_EQ(appliedAddress, network->device(addressesCommand));
    EXPECT_EQ(appliedRoute, network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, GatewayNoneLeavesNoDefaultRoute)
{
    ASSERT_EQ("1", apply(staticRecord));
    auto [answer, output] =
        applyCapturing(record({192, 0, 2, 10}, {255, 255, 255, 0}, {0, 0, 0, 0}));
    EXPECT_EQ("1", answer);
    EXPECT_EQ("[NFO] sysconfig_set_ipconfig: " PLIX_SYSCONFIG_IFNAME
              " set to 192.0.2.10 netmask 255.255.255.0 gateway 0.0.0.0\n",
              output);
    EXPECT_EQ(appliedAddress, network->device(addressesCommand));
    EXPECT_EQ("", network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, AddressHeldByAnotherHostOnTheLinkAnswers3)
{
    network->peer("addr add 192.0.2.10/24 dev peer0");
    std::string peerMac = network->peer("-br link show peer0 | awk '{printf \"%s\", $3}'");
    auto [answer, output] = applyCapturing(staticRecord);
    EXPECT_EQ("3", answer);
    EXPECT_EQ("[NOT] sysconfig_set_ipconfig: 192.0.2.10 is in use by " + peerMac + "\n", output);
    EXPECT_EQ("", network->device(addressesCommand));
    EXPECT_EQ("", network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, AnotherAddressOnTheLinkDoesNotCountAsDuplicate)
{
    network->peer("addr add 192.0.2.11/24 dev peer0");
    EXPECT_EQ("1", apply(staticRecord));
    EXPECT_EQ(appliedAddress, network->device(addressesCommand));
}

TEST_F(SysconfigSetIpconfigTest, DhcpModeRemovesTheStaticConfiguration)
{
    ASSERT_EQ("1", apply(staticRecord));
    auto [answer, output] = applyCapturing(dhcpRecord);
    EXPECT_EQ("1", answer);
    EXPECT_EQ("[NFO] sysconfig_set_ipconfig: static configuration of " PLIX_SYSCONFIG_IFNAME
              " removed\n",
              output);
    EXPECT_EQ("", network->device(addressesCommand));
    EXPECT_EQ("", network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, DhcpModeKeepsAddressesAndRoutesItDidNotSet)
{
    network->device("addr add 198.51.100.7/24 dev " PLIX_SYSCONFIG_IFNAME);
    network->device("route add default via 198.51.100.1 proto dhcp");
    EXPECT_EQ("1", apply(dhcpRecord));
    EXPECT_EQ("198.51.100.7/24 scope global " PLIX_SYSCONFIG_IFNAME " valid_lft forever\n",
              network->device(addressesCommand));
    EXPECT_EQ("default via 198.51.100.1 dev " PLIX_SYSCONFIG_IFNAME " proto dhcp \n",
              network->device(defaultRouteCommand));
}

TEST_F(SysconfigSetIpconfigTest, InterfaceDownAnswers0WithReason)
{
    network->device("link set " PLIX_SYSCONFIG_IFNAME " down");
    auto [answer, output] = applyCapturing(staticRecord);
    EXPECT_EQ("0", answer);
    EXPECT_EQ("[ERR] sysconfig_set_ipconfig: ARP probe on " PLIX_SYSCONFIG_IFNAME
              " failed: send: Network is down\n",
              output);
    EXPECT_EQ("", network->device(addressesCommand));
}

TEST_F(SysconfigSetIpconfigTest, KernelRefusalAnswers0WithReason)
{
    testing::internal::CaptureStdout();
    std::string answer = network->inDevice([]() {
        return PlixTestChild::dropCapability(CAP_NET_ADMIN)
                   ? sysconfig_set_ipconfig(caller, &staticRecord)
                   : -1;
    });
    std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ("0", answer);
    EXPECT_EQ("[ERR] sysconfig_set_ipconfig: adding the address on " PLIX_SYSCONFIG_IFNAME
              " refused: Operation not permitted\n",
              output);
    EXPECT_EQ("", network->device(addressesCommand));
}

TEST_F(SysconfigSetIpconfigTest, MissingRecordAnswers0WithReason)
{
    testing::internal::CaptureStdout();
    std::string answer =
        network->inDevice([]() { return sysconfig_set_ipconfig(caller, nullptr); });
    EXPECT_EQ("[ERR] sysconfig_set_ipconfig: no record\n", testing::internal::GetCapturedStdout());
    EXPECT_EQ("0", answer);
}

// A device namespace without the interface.
class SysconfigSetIpconfigNoInterfaceTest : public SysconfigSetIpconfigTest
{
protected:
    bool withLink() const override { return false; }
};

TEST_F(SysconfigSetIpconfigNoInterfaceTest, StaticAddressWithoutTheInterfaceAnswers0WithReason)
{
    auto [answer, output] = applyCapturing(staticRecord);
    EXPECT_EQ("0", answer);
    EXPECT_EQ("[ERR] sysconfig_set_ipconfig: interface " PLIX_SYSCONFIG_IFNAME " not found\n",
              output);
}

TEST_F(SysconfigSetIpconfigNoInterfaceTest, DhcpModeWithoutTheInterfaceAnswers0WithReason)
{
    auto [answer, output] = applyCapturing(dhcpRecord);
    EXPECT_EQ("0", answer);
    EXPECT_EQ("[ERR] sysconfig_set_ipconfig: interface " PLIX_SYSCONFIG_IFNAME " not found\n",
              output);
}

struct InvalidRecord
{
    const char* name;
    sysconfig_ipconfig_t config;
    const char* line;
};

class SysconfigSetIpconfigInvalidTest : public SysconfigSetIpconfigTest,
                                        public testing::WithParamInterface<InvalidRecord>
{
};

TEST_P(SysconfigSetIpconfigInvalidTest, InvalidRecordAnswers2AndChangesNothing)
{
    auto [answer, output] = applyCapturing(GetParam().config);
    EXPECT_EQ("2", answer);
    EXPECT_EQ(std::string("[NOT] sysconfig_set_ipconfig: ") + GetParam().line + "\n", output);
    EXPECT_EQ("", network->device(addressesCommand));
    EXPECT_EQ("", network->device(defaultRouteCommand));
}

INSTANTIATE_TEST_SUITE_P(
    Records, SysconfigSetIpconfigInvalidTest,
    testing::Values(
        InvalidRecord{"AddressZero", record({0, 0, 0, 0}, {255, 255, 255, 0}, {0, 0, 0, 0}),
                      "0.0.0.0 netmask 255.255.255.0 gateway 0.0.0.0 not supported: "
                      "address is not a unicast host address"},
        InvalidRecord{"AddressInZeroNetwork", record({0, 1, 2, 3}, {255, 0, 0, 0}, {0, 0, 0, 0}),
                      "0.1.2.3 netmask 255.0.0.0 gateway 0.0.0.0 not supported: "
                      "address is not a unicast host address"},
        InvalidRecord{"Loopback", record({127, 0, 0, 1}, {255, 0, 0, 0}, {0, 0, 0, 0}),
                      "127.0.0.1 netmask 255.0.0.0 gateway 0.0.0.0 not supported: "
                      "address is not a unicast host address"},
        InvalidRecord{"Multicast", record({224, 0, 0, 5}, {255, 255, 255, 0}, {0, 0, 0, 0}),
                      "224.0.0.5 netmask 255.255.255.0 gateway 0.0.0.0 not supported: "
                      "address is not a unicast host address"},
        InvalidRecord{"Reserved", record({240, 0, 0, 1}, {255, 255, 255, 0}, {0, 0, 0, 0}),
                      "240.0.0.1 netmask 255.255.255.0 gateway 0.0.0.0 not supported: "
                      "address is not a unicast host address"},
        InvalidRecord{"LimitedBroadcast",
                      record({255, 255, 255, 255}, {255, 255, 255, 0}, {0, 0, 0, 0}),
                      "255.255.255.255 netmask 255.255.255.0 gateway 0.0.0.0 not supported: "
                      "address is not a unicast host address"},
        InvalidRecord{"MaskNotContiguous",
                      record({192, 0, 2, 10}, {255, 0, 255, 0}, {192, 0, 2, 1}),
                      "192.0.2.10 netmask 255.0.255.0 gateway 192.0.2.1 not supported: netmask not "
                      "contiguous"},
        InvalidRecord{"MaskWithHoleAtTheEnd",
                      record({192, 0, 2, 10}, {255, 255, 255, 253}, {0, 0, 0, 0}),
                      "192.0.2.10 netmask 255.255.255.253 gateway 0.0.0.0 not supported: netmask "
                      "not contiguous"},
        InvalidRecord{"MaskSlash0", record({192, 0, 2, 10}, {0, 0, 0, 0}, {0, 0, 0, 0}),
                      "192.0.2.10 netmask 0.0.0.0 gateway 0.0.0.0 not supported: netmask /0 or /32 "
                      "not supported"},
        InvalidRecord{"MaskSlash32", record({192, 0, 2, 10}, {255, 255, 255, 255}, {0, 0, 0, 0}),
                      "192.0.2.10 netmask 255.255.255.255 gateway 0.0.0.0 not supported: "
                      "netmask /0 or /32 not supported"},
        InvalidRecord{"NetworkAddress", record({192, 0, 2, 0}, {255, 255, 255, 0}, {192, 0, 2, 1}),
                      "192.0.2.0 netmask 255.255.255.0 gateway 192.0.2.1 not supported: "
                      "address is the network or broadcast address of the subnet"},
        InvalidRecord{"BroadcastAddress",
                      record({192, 0, 2, 255}, {255, 255, 255, 0}, {192, 0, 2, 1}),
                      "192.0.2.255 netmask 255.255.255.0 gateway 192.0.2.1 not supported: "
                      "address is the network or broadcast address of the subnet"},
        InvalidRecord{"Slash31HasNoHostAddress",
                      record({192, 0, 2, 10}, {255, 255, 255, 254}, {0, 0, 0, 0}),
                      "192.0.2.10 netmask 255.255.255.254 gateway 0.0.0.0 not supported: "
                      "address is the network or broadcast address of the subnet"},
        InvalidRecord{"GatewayOutsideSubnet",
                      record({192, 0, 2, 10}, {255, 255, 255, 0}, {198, 51, 100, 1}),
                      "192.0.2.10 netmask 255.255.255.0 gateway 198.51.100.1 not supported: "
                      "gateway outside the subnet"},
        InvalidRecord{"GatewayIsTheAddress",
                      record({192, 0, 2, 10}, {255, 255, 255, 0}, {192, 0, 2, 10}),
                      "192.0.2.10 netmask 255.255.255.0 gateway 192.0.2.10 not supported: "
                      "gateway is the address itself"},
        InvalidRecord{"GatewayIsTheBroadcastAddress",
                      record({192, 0, 2, 10}, {255, 255, 255, 0}, {192, 0, 2, 255}),
                      "192.0.2.10 netmask 255.255.255.0 gateway 192.0.2.255 not supported: "
                      "gateway is the network or broadcast address of the subnet"}),
    [](const testing::TestParamInfo<InvalidRecord>& info) { return std::string(info.param.name); });
