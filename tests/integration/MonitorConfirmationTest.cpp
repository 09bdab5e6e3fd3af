// A change applied with a confirmation window: kept when confirmed, put back
// by the service itself when not, with the network action run again, and
// put back after a service that was killed inside the window starts again.
#include "PlixIntegrationTest.h"
#include "PlixMonitorCalls.h"
#include "PlixOutputLines.h"
#include "PlixSignalRecorder.h"
#include "PlixWait.h"

#include <csignal>
#include <filesystem>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

namespace {
constexpr unsigned kLongWindow = 3600;
// The shortest window there is; the one test that lets it run out waits
// this long and a margin for a loaded machine.
constexpr unsigned kShortWindow = 10;
constexpr std::chrono::seconds kRollbackBound{kShortWindow + 30};
constexpr std::chrono::seconds kSignalBound{5};
const char* const kAddress = "eth0/ipaddress";
const char* const kLabel = "general/label";
const char* const kOldCall = "ipconfig fe02 c0a8000a ffffff00 c0a80001";
const char* const kNewCall = "ipconfig fe02 0a000014 ffffff00 c0a80001";
const char* const kRolledBack = "[NOT] Rolled back 1 values of the unconfirmed change";
using Ids = std::vector<std::string>;
using Change = PlixMonitorCalls::Change;
} // namespace

class MonitorConfirmation : public PlixIntegrationTest
{
protected:
    void SetUp() override
    {
        PlixIntegrationTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        mXml = writeConfig();
        ASSERT_TRUE(serve("service"));
    }

    // Starts the service on the store as it is, with the recording
    // system-configuration double.
    bool serve(const std::string& name, const std::string& ipconfigAnswer = "1")
    {
        mService = &start({"-c", mXml},
                          {{"PLIX_TEST_PRELOAD", PLIX_FAKE_SYSCONFIG},
                           {"PLIX_FAKE_SYSCONFIG_LOG", dir().file("sysconfig.log")},
                           {"PLIX_FAKE_IPCONFIG_ANSWER", ipconfigAnswer}},
                          name);
        if (!waitServing(*mService)) {
            ADD_FAILURE() << "the service does not serve; its output:\n" << tail(*mService);
            return false;
        }
        mClient = &newClient();
        return true;
    }

    PlixMonitorCalls monitor() { return PlixMonitorCalls(*mClient); }
    PlixMonitorCalls::AppliedConfirmed changeAddress(unsigned seconds)
    {
        return monitor().applyConfirmed({{kAddress, g_variant_new_string("10.0.0.20")}}, seconds);
    }
    std::vector<std::string> calls() const
    {
        return PlixTestDir::splitLines(fileText("sysconfig.log"));
    }
    std::string storedAddress() const
    {
        return nlohmann::json::parse(fileText("network.json"))["eth0"]["ipaddress"];
    }
    std::string addressNow() { return newClient().getStringTransient(kAddress).value; }
    std::string rollbackFile() { return dir().file("plix-rollback.json"); }
    std::vector<std::string> lines() const { return mService->stdoutLines(); }
    void killService()
    {
        ASSERT_EQ(::kill(servicePid(), SIGKILL), 0);
        ASSERT_TRUE(mService->waitExit(kExitBound).has_value());
    }

    std::string mXml;
    PlixServiceProcess* mService = nullptr;
    PlixBusClient* mClient = nullptr;
};

TEST_F(MonitorConfirmation, ApplyConfirmedAnswersATokenOf128BitsInHex)
{
    const auto applied = changeAddress(kLongWindow);
    EXPECT_EQ(applied.status, 0);
    EXPECT_EQ(applied.failedId, "");
    EXPECT_EQ(applied.token.size(), 32u);
    EXPECT_EQ(applied.token.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(monitor().cancel(applied.token), 0);
}

TEST_F(MonitorConfirmation, ConfirmWithinTheWindowKeepsTheChange)
{
    const auto applied = changeAddress(kLongWindow);
    ASSERT_EQ(applied.status, 0);
    EXPECT_EQ(storedAddress(), "10.0.0.20");
    EXPECT_EQ(PlixMonitorCalls(newClient()).confirm(applied.token), 0);
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_EQ(addressNow(), "10.0.0.20");
    EXPECT_EQ(storedAddress(), "10.0.0.20");
    EXPECT_EQ(calls(), Ids{kNewCall});
    EXPECT_FALSE(std::filesystem::exists(rollbackFile()));
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Change of 1 values confirmed"));
}

TEST_F(MonitorConfirmation, NoConfirmationPutsTheOldAddressBackWithItsAction)
{
    PlixSignalRecorder recorder(newClient());
    ASSERT_EQ(changeAddress(kShortWindow).status, 0);
    ASSERT_TRUE(mService->waitForLine(kRolledBack, kRollbackBound)) << tail(*mService);
    EXPECT_EQ(storedAddress(), "192.168.0.10");
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_EQ(calls(), (Ids{kNewCall, kOldCall}));
    ASSERT_TRUE(recorder.waitFor(2, kSignalBound));
    EXPECT_EQ(recorder.changes()[1].ids, Ids{kAddress});
    EXPECT_TRUE(recorder.changes()[1].persistent);
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_FALSE(std::filesystem::exists(rollbackFile()));
}

TEST_F(MonitorConfirmation, CancelPutsTheOldValuesBackAtOnce)
{
    PlixSignalRecorder recorder(newClient());
    const auto applied = changeAddress(kLongWindow);
    ASSERT_EQ(applied.status, 0);
    EXPECT_EQ(PlixMonitorCalls(newClient()).cancel(applied.token), 0);
    EXPECT_EQ(storedAddress(), "192.168.0.10");
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_EQ(calls(), (Ids{kNewCall, kOldCall}));
    ASSERT_TRUE(recorder.waitFor(2, kSignalBound));
    EXPECT_EQ(recorder.changes()[1].ids, Ids{kAddress});
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_TRUE(plixHasLine(lines(), kRolledBack));
}

TEST_F(MonitorConfirmation, AWrongTokenAnswers4AndTheChangeStaysPending)
{
    const auto applied = changeAddress(kLongWindow);
    ASSERT_EQ(applied.status, 0);
    std::string wrong = applied.token;
    wrong[0] = wrong[0] == '0' ? '1' : '0';
    EXPECT_EQ(monitor().confirm(wrong), 4);
    EXPECT_EQ(monitor().cancel(wrong), 4);
    EXPECT_EQ(monitor().confirm(""), 4);
    EXPECT_TRUE(monitor().pending().pending);
    EXPECT_EQ(storedAddress(), "10.0.0.20");
    EXPECT_EQ(monitor().confirm(applied.token), 0);
    EXPECT_EQ(monitor().confirm(applied.token), 4);
}

TEST_F(MonitorConfirmation, WhilePendingTransactionsAndAppliesOfAnyClientAnswer8)
{
    const auto applied = changeAddress(kLongWindow);
    ASSERT_EQ(applied.status, 0);
    PlixBusClient& other = newClient();
    EXPECT_EQ(other.transactionStart(true), 8);
    EXPECT_EQ(mClient->transactionStart(false), 8);
    EXPECT_EQ(PlixMonitorCalls(other).apply({{kLabel, g_variant_new_string("beta")}}, true).status,
              8);
    const auto second =
        PlixMonitorCalls(other).applyConfirmed({{kLabel, g_variant_new_string("beta")}}, 60);
    EXPECT_EQ(second.status, 8);
    EXPECT_EQ(second.token, "");
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Plix is currently busy with another transaction!"));
    EXPECT_EQ(other.getStringTransient(kLabel).value, "alpha");
    EXPECT_EQ(other.setStringTransient(kLabel, "gamma"), 0);
    EXPECT_EQ(monitor().confirm(applied.token), 0);
    EXPECT_EQ(other.transactionStart(true), 0);
}

TEST_F(MonitorConfirmation, AFailedApplyConfirmedLeavesNothingPending)
{
    const auto applied = monitor().applyConfirmed(
        {{kLabel, g_variant_new_string("beta")}, {"general/nothing", g_variant_new_int32(1)}},
        kLongWindow);
    EXPECT_EQ(applied.status, 9);
    EXPECT_EQ(applied.failedId, "general/nothing");
    EXPECT_EQ(applied.token, "");
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_EQ(mClient->transactionStart(true), 0);
}

// The rollback file was written before the commit; the failed commit takes
// it away again.
TEST_F(MonitorConfirmation, AFailedNetworkActionLeavesNothingPending)
{
    killService();
    ASSERT_TRUE(serve("refusing", "2"));
    const auto applied = changeAddress(kLongWindow);
    EXPECT_EQ(applied.status, 402);
    EXPECT_EQ(applied.token, "");
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_FALSE(std::filesystem::exists(rollbackFile()));
    EXPECT_EQ(storedAddress(), "192.168.0.10");
}

TEST_F(MonitorConfirmation, AWindowOutsideTenTo3600SecondsAnswers200BeforeAnythingStarts)
{
    for (const unsigned seconds : {0u, 9u, 3601u}) {
        const auto applied = changeAddress(seconds);
        EXPECT_EQ(applied.status, 200) << seconds;
        EXPECT_EQ(applied.token, "") << seconds;
    }
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_FALSE(plixHasLine(lines(), "[NOT] transactionStart client: " + mClient->uniqueName() +
                                          " persistent: true"));
    EXPECT_EQ(calls(), Ids{});
}

TEST_F(MonitorConfirmation, PendingTellsTheIdsAndTheTimeLeftButNoValue)
{
    const auto before = monitor().pending();
    EXPECT_FALSE(before.pending);
    EXPECT_EQ(before.secondsLeft, 0u);
    EXPECT_EQ(before.ids, Ids{});
    const auto applied = monitor().applyConfirmed(
        {{kAddress, g_variant_new_string("10.0.0.20")}, {kLabel, g_variant_new_string("beta")}},
        kLongWindow);
    ASSERT_EQ(applied.status, 0);
    const auto during = PlixMonitorCalls(newClient()).pending();
    EXPECT_TRUE(during.pending);
    EXPECT_LE(during.secondsLeft, kLongWindow);
    EXPECT_GT(during.secondsLeft, kLongWindow - 60);
    EXPECT_EQ(during.ids, (Ids{kAddress, kLabel}));
    ASSERT_EQ(monitor().confirm(applied.token), 0);
    const auto after = monitor().pending();
    EXPECT_FALSE(after.pending);
    EXPECT_EQ(after.secondsLeft, 0u);
    EXPECT_EQ(after.ids, Ids{});
}

TEST_F(MonitorConfirmation, TheRollbackFileIsTheOwnersOnlyAndGoesWithTheConfirmation)
{
    const auto applied = changeAddress(kLongWindow);
    ASSERT_EQ(applied.status, 0);
    struct stat status;
    ASSERT_EQ(::stat(rollbackFile().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    const nlohmann::json rollback = nlohmann::json::parse(fileText("plix-rollback.json"));
    EXPECT_EQ(rollback["values"], nlohmann::json::parse(R"([{"id": "eth0/ipaddress", "type": 1,
                                         "value": "192.168.0.10"}])"));
    EXPECT_EQ(fileText("plix-rollback.json").find(applied.token), std::string::npos);
    ASSERT_EQ(monitor().confirm(applied.token), 0);
    EXPECT_FALSE(std::filesystem::exists(rollbackFile()));
}

TEST_F(MonitorConfirmation, KilledInsideTheWindowComesBackWithTheOldValuesAndTheirAction)
{
    ASSERT_EQ(changeAddress(kLongWindow).status, 0);
    killService();
    EXPECT_EQ(storedAddress(), "10.0.0.20");
    ASSERT_TRUE(serve("again"));
    EXPECT_EQ(storedAddress(), "192.168.0.10");
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_EQ(calls(), (Ids{kNewCall, kOldCall}));
    EXPECT_FALSE(std::filesystem::exists(rollbackFile()));
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_TRUE(plixLinesInOrder(
        lines(), {"[NOT] Restoring 1 values of a change that was never confirmed", kRolledBack}));
}

TEST_F(MonitorConfirmation, ACorruptRollbackFileIsRenamedAsideAndNotApplied)
{
    killService();
    dir().write("plix-rollback.json",
                R"({"deadline": 1, "values": [{"id": "eth0/ipaddress", "type": 1, "value": )"
                R"("10.0.0.30"}, {"id": "general/count", "type": 1, "value": "x"}]})");
    ASSERT_TRUE(serve("again"));
    EXPECT_EQ(addressNow(), "192.168.0.10");
    EXPECT_EQ(calls(), Ids{});
    EXPECT_FALSE(std::filesystem::exists(rollbackFile()));
    EXPECT_TRUE(std::filesystem::exists(rollbackFile() + ".corrupt"));
    EXPECT_TRUE(plixHasLine(lines(), "[ERR] Rollback file " + rollbackFile() +
                                         " is corrupt and not applied; it is kept as " +
                                         rollbackFile() + ".corrupt"));
    EXPECT_FALSE(monitor().pending().pending);
}
