#include "PlixIntegrationTest.h"
#include "PlixOutputLines.h"
#include "PlixTestPaths.h"

// The network data set's commit through the system-configuration library,
// with a recording double preloaded in its place that answers as told.
class SysconfigDouble : public PlixIntegrationTest
{
protected:
    // Starts the service with the double answering `answer`, commits the
    // address and returns the commit's status.
    int commitAddress(int answer, const std::string& address)
    {
        PlixServiceProcess* service =
            startServing({}, {{"PLIX_TEST_PRELOAD", PLIX_FAKE_SYSCONFIG},
                              {"PLIX_FAKE_SYSCONFIG_LOG", dir().file("sysconfig.log")},
                              {"PLIX_FAKE_IPCONFIG_ANSWER", std::to_string(answer)}});
        if (service == nullptr) {
            return -1;
        }
        mService = service;
        PlixBusClient& client = newClient();
        EXPECT_EQ(client.transactionStart(true), 0);
        EXPECT_EQ(client.setString("eth0/ipaddress", address), 0);
        return client.transactionStop();
    }

    std::vector<std::string> calls() const
    {
        return PlixTestDir::splitLines(fileText("sysconfig.log"));
    }
    std::string addressNow() { return newClient().getStringTransient("eth0/ipaddress").value; }
    std::vector<std::string> lines() const { return mService->stdoutLines(); }

private:
    PlixServiceProcess* mService = nullptr;
};

TEST_F(SysconfigDouble, StaticAddressIsSentAsTwelveRecordBytes)
{
    EXPECT_EQ(commitAddress(1, "192.168.0.10"), 0);
    EXPECT_EQ(calls(), std::vector<std::string>{"ipconfig fe02 c0a8000a ffffff00 c0a80001"});
    EXPECT_EQ(killallLog(), "killall -SIGKILL udhcpc\n");
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Successfully used PlixDataSetOnChangeSysconfigNetwork "
                                     "to set IP-address 192.168.0.10, subnetmask 255.255.255.0 "
                                     "and gateway 192.168.0.1"));
}

TEST_F(SysconfigDouble, AddressNotSupportedReplies402AndRollsBack)
{
    EXPECT_EQ(commitAddress(2, "10.0.0.5"), 402);
    EXPECT_EQ(calls(), std::vector<std::string>{"ipconfig fe02 0a000005 ffffff00 c0a80001"});
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_TRUE(plixLinesInOrder(lines(), {"[NOT] IP-address 10.0.0.5 not supported",
                                           "[NOT] Triggering onChange with DataSet eth0 failed."}));
}

TEST_F(SysconfigDouble, AddressDuplicatedReplies401AndRollsBack)
{
    EXPECT_EQ(commitAddress(3, "10.0.0.6"), 401);
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] IP-address 10.0.0.6 duplicated"));
}

TEST_F(SysconfigDouble, RefusedSettingsReply13AndRollBack)
{
    EXPECT_EQ(commitAddress(0, "10.0.0.7"), 13);
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] DataSetOnChangeSysconfigNetwork failed with "
                                     "IP-address 10.0.0.7, subnetmask 255.255.255.0 and gateway "
                                     "192.168.0.1"));
}
