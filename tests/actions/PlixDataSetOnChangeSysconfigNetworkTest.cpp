#include "PlixDataSetOnChangeSysconfigNetwork.h"
#include "PlixTestDataSet.h"
#include "PlixTestDirectory.h"
#include "SysconfigDouble.h"

#include <sys/stat.h>

#include <array>
#include <cstdlib>
#include <cstring>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

using Record = std::array<std::uint8_t, 12>;

// Puts a "killall" that only notes its arguments first in PATH, so no
// process of the machine is killed.
class PlixDataSetOnChangeSysconfigNetworkTest : public testing::Test
{
protected:
    void SetUp() override
    {
        SysconfigDouble::reset();
        const std::string bin = directory.file("bin");
        ASSERT_EQ(mkdir(bin.c_str(), 0700), 0);
        directory.write("bin/killall",
                        "#!/bin/sh\necho \"$*\" >> '" + directory.file("killall.log") + "'\n");
        ASSERT_EQ(chmod((bin + "/killall").c_str(), 0700), 0);
        const char* path = std::getenv("PATH");
        savedPath = path != nullptr ? path : "";
        setenv("PATH", (bin + ":" + savedPath).c_str(), 1);
    }

    void TearDown() override { setenv("PATH", savedPath.c_str(), 1); }

    void addStatic(const std::string& address, const std::string& mask, const std::string& gateway)
    {
        dataSet.add("dhcp", PlixVariant(false));
        dataSet.add("ipaddress", PlixVariant(address));
        dataSet.add("subnetmask", PlixVariant(mask));
        dataSet.add("gateway", PlixVariant(gateway));
    }

    unsigned runWithAnswer(int answer)
    {
        SysconfigDouble::setAnswer(answer);
        CaptureStdout();
        const unsigned code = action.onChange();
        output = GetCapturedStdout();
        return code;
    }

    Record sentRecord() const
    {
        EXPECT_EQ(SysconfigDouble::ipconfigCalls().size(), 1u);
        return SysconfigDouble::ipconfigCalls().empty()
                   ? Record{}
                   : SysconfigDouble::ipconfigCalls()[0].record;
    }

    PlixTestDirectory directory;
    PlixTestDataSet dataSet;
    PlixDataSetOnChangeSysconfigNetwork action{dataSet.get()};
    std::string savedPath;
    std::string output;
};

class PlixDataSetOnChangeSysconfigNetworkDeathTest : public PlixDataSetOnChangeSysconfigNetworkTest
{
protected:
    // A network data set with every member but the one left out.
    void expectFatalWithoutMember(const std::string& leftOut, const std::string& line)
    {
        const std::pair<const char*, PlixVariant> members[] = {
            {"dhcp", PlixVariant(false)},
            {"ipaddress", PlixVariant("192.168.0.10")},
            {"subnetmask", PlixVariant("255.255.255.0")},
            {"gateway", PlixVariant("192.168.0.1")},
        };
        for (const auto& member : members) {
            if (member.first != leftOut) {
                dataSet.add(member.first, member.second);
            }
        }
        EXPECT_EXIT((sendStdoutToStderr(), action.onChange()), testing::ExitedWithCode(16),
                    testing::Eq(line));
    }
};

} // namespace

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, DhcpOnRestartsTheClientAndSendsTwelveZeroBytes)
{
    if (access("/sbin/udhcpc", F_OK) == 0) {
        GTEST_SKIP() << "this machine has a DHCP client that the test would really start";
    }
    dataSet.add("dhcp", PlixVariant(true));
    EXPECT_EQ(runWithAnswer(1), 0u);
    EXPECT_EQ(sentRecord(), Record{});
    EXPECT_EQ(SysconfigDouble::ipconfigCalls()[0].caller, 0xFE02);
    EXPECT_EQ(directory.read("killall.log"), "-SIGKILL udhcpc\n");
    EXPECT_EQ(output, "[NOT] Successfully started dhcp\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, DhcpOnRefusedByTheLibraryGives13WithoutFurtherLine)
{
    if (access("/sbin/udhcpc", F_OK) == 0) {
        GTEST_SKIP() << "this machine has a DHCP client that the test would really start";
    }
    dataSet.add("dhcp", PlixVariant(true));
    EXPECT_EQ(runWithAnswer(0), 13u);
    EXPECT_EQ(output, "[NOT] Successfully started dhcp\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, StaticAddressIsSentOneBytePerDottedPart)
{
    addStatic("192.168.0.10", "255.255.255.0", "192.168.0.1");
    EXPECT_EQ(runWithAnswer(1), 0u);
    const Record expected = {0xC0, 0xA8, 0x00, 0x0A, 0xFF, 0xFF,
                             0xFF, 0x00, 0xC0, 0xA8, 0x00, 0x01};
    EXPECT_EQ(sentRecord(), expected);
    EXPECT_EQ(SysconfigDouble::ipconfigCalls()[0].caller, 0xFE02);
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, StaticAddressStopsTheDhcpClientAndLogsTheSettings)
{
    addStatic("192.168.0.10", "255.255.255.0", "192.168.0.1");
    EXPECT_EQ(runWithAnswer(1), 0u);
    EXPECT_EQ(directory.read("killall.log"), "-SIGKILL udhcpc\n");
    EXPECT_EQ(output, "[NOT] Successfully used PlixDataSetOnChangeSysconfigNetwork to set "
                      "IP-address 192.168.0.10, "
                      "subnetmask 255.255.255.0 and gateway 192.168.0.1\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, AnswerThreeGives401AndTheDuplicatedLine)
{
    addStatic("192.168.0.10", "255.255.255.0", "192.168.0.1");
    EXPECT_EQ(runWithAnswer(3), 401u);
    EXPECT_EQ(output, "[NOT] IP-address 192.168.0.10 duplicated\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, AnswerTwoGives402AndTheNotSupportedLine)
{
    addStatic("192.168.0.10", "255.255.255.0", "192.168.0.1");
    EXPECT_EQ(runWithAnswer(2), 402u);
    EXPECT_EQ(output, "[NOT] IP-address 192.168.0.10 not supported\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, AnswerZeroGives13AndTheFailureLine)
{
    addStatic("192.168.0.10", "255.255.255.0", "192.168.0.1");
    EXPECT_EQ(runWithAnswer(0), 13u);
    EXPECT_EQ(output, "[NOT] DataSetOnChangeSysconfigNetwork failed with IP-address 192.168.0.10, "
                      "subnetmask 255.255.255.0 and gateway 192.168.0.1\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkTest, ShortStaticTextsLeaveTheirRemainingBytesZero)
{
    addStatic("10.1", "", "1.2.3.4.5");
    EXPECT_EQ(runWithAnswer(1), 0u);
    const Record expected = {10, 1, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4};
    EXPECT_EQ(sentRecord(), expected);
}

TEST(PlixDataSetOnChangeSysconfigNetworkParse, PartsAreCutToTheirLowEightBits)
{
    unsigned char out[4] = {};
    PlixDataSetOnChangeSysconfigNetwork::parseIPTypeStringToInt("256.-1.x.", out);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 255);
    EXPECT_EQ(out[2], 0);
    EXPECT_EQ(out[3], 0);
}

TEST(PlixDataSetOnChangeSysconfigNetworkParse, MissingPartsLeaveTheirBytesAsTheyWere)
{
    unsigned char out[4] = {0xAA, 0xAA, 0xAA, 0xAA};
    PlixDataSetOnChangeSysconfigNetwork::parseIPTypeStringToInt("7.8", out);
    EXPECT_EQ(out[0], 7);
    EXPECT_EQ(out[1], 8);
    EXPECT_EQ(out[2], 0xAA);
    EXPECT_EQ(out[3], 0xAA);
}

TEST(PlixDataSetOnChangeSysconfigNetworkParse, MoreThanFourPartsWriteOnlyFourBytes)
{
    unsigned char out[6] = {0, 0, 0, 0, 0xAA, 0xAA};
    PlixDataSetOnChangeSysconfigNetwork::parseIPTypeStringToInt("1.2.3.4.5.6", out);
    const unsigned char expected[6] = {1, 2, 3, 4, 0xAA, 0xAA};
    EXPECT_EQ(std::memcmp(out, expected, sizeof out), 0);
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkDeathTest, MissingDhcpEndsTheProcessWith16)
{
    expectFatalWithoutMember("dhcp",
                             "[ERR] Critical exception in "
                             "PlixDataSetOnChangeSysconfigNetwork::onChange Dhcp Read: map::at\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkDeathTest, MissingIpAddressEndsTheProcessWith16)
{
    expectFatalWithoutMember(
        "ipaddress", "[ERR] Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange IP "
                     "address Read: map::at\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkDeathTest, MissingSubnetMaskEndsTheProcessWith16)
{
    expectFatalWithoutMember(
        "subnetmask", "[ERR] Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange "
                      "Subnetmask read: map::at\n");
}

TEST_F(PlixDataSetOnChangeSysconfigNetworkDeathTest,
       MissingGatewayEndsTheProcessAfterTheGatewayReadLine)
{
    expectFatalWithoutMember(
        "gateway", "[ERR] Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange "
                   "Gateway read: map::at\n");
}
