// The service on a full data partition: the store file lies on a tmpfs of
// 64 KiB that the test fills to the last byte, as a device's logs fill its
// flash, and frees again.
#include "PlixIntegrationTest.h"
#include "PlixMonitorCalls.h"
#include "PlixOutputLines.h"
#include "PlixSmallDisk.h"
#include "PlixWait.h"

#include <algorithm>
#include <csignal>
#include <filesystem>

#include <nlohmann/json.hpp>

namespace {
constexpr std::size_t kDiskBytes = 64 * 1024;
// The service tries an unwritten file again every 30 seconds; the margin is
// for a loaded machine.
constexpr std::chrono::seconds kRetryPeriod{30};
constexpr std::chrono::seconds kRetryMargin{10};
const char* const kStoreText = "{\n    \"display\": {\n        \"brightness\": 80\n    }\n}\n";
const char* const kXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plix_config>
  <Panel_file name="display">@DIR@/data/display.json</Panel_file>
  <DataSet ID="display">
    <File>display</File>
    <Value name="brightness" type="int"><jpath>display.brightness</jpath></Value>
  </DataSet>
</plix_config>
)";
const char* const kBrightness = "display/brightness";
const char* const kDiskFull = "No space left on device";
const char* const kReadOnly = "Read-only file system";

using Pairs = std::vector<std::pair<std::string, std::string>>;
using Names = std::vector<std::string>;
} // namespace

class StoreFailure : public PlixIntegrationTest
{
protected:
    void SetUp() override
    {
        PlixIntegrationTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        mDisk = std::make_unique<PlixSmallDisk>(dir().makeDirectory("data"), kDiskBytes);
        ASSERT_EQ(mDisk->error(), "");
        dir().write("data/display.json", kStoreText);
        mXml = writeXml("plix_display.xml", kXml);
        ASSERT_TRUE(startService("service"));
        mClient = &newClient();
        ASSERT_TRUE(mDisk->fill());
    }

    // The tmpfs leaves the test's namespace before the directory goes.
    void TearDown() override
    {
        mDisk.reset();
        PlixIntegrationTest::TearDown();
    }

    bool startService(const std::string& name)
    {
        PlixServiceProcess& service = start({"-c", mXml}, {}, name);
        mService = &service;
        const bool serving = waitServing(service);
        EXPECT_TRUE(serving) << tail(service);
        return serving;
    }

    // A persistent transaction of one set through the configuration
    // interface; answers the stop's code.
    int commitThroughAdaptor(int brightness)
    {
        EXPECT_EQ(client().transactionStart(true), 0);
        EXPECT_EQ(client().setInt(kBrightness, brightness), 0);
        return client().transactionStop();
    }

    PlixMonitorCalls::Applied applyBrightness(int brightness)
    {
        return monitor().apply({{kBrightness, g_variant_new_int32(brightness)}}, true);
    }

    Names dataFiles()
    {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(dir().file("data"))) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    Names errorLines() const
    {
        Names found;
        for (const std::string& line : mService->stdoutLines()) {
            if (line.rfind("[ERR] ", 0) == 0) {
                found.push_back(line);
            }
        }
        return found;
    }

    std::string couldNotWrite(const std::string& error)
    {
        return "[ERR] Could not write " + storePath() + ": " + error;
    }

    PlixSmallDisk& disk() { return *mDisk; }
    PlixServiceProcess& service() { return *mService; }
    PlixBusClient& client() { return *mClient; }
    PlixMonitorCalls monitor() { return PlixMonitorCalls(client()); }
    std::string storePath() { return dir().file("data/display.json"); }
    std::string storeText() { return fileText("data/display.json"); }

private:
    std::unique_ptr<PlixSmallDisk> mDisk;
    std::string mXml;
    PlixServiceProcess* mService = nullptr;
    PlixBusClient* mClient = nullptr;
};

TEST_F(StoreFailure, ACommitThroughTheConfigurationInterfaceAnswers0AndLeavesTheFileIntact)
{
    EXPECT_EQ(commitThroughAdaptor(33), 0);
    EXPECT_EQ(storeText(), kStoreText);
    EXPECT_EQ(dataFiles(), (Names{"display.json", "filler"}));
    EXPECT_EQ(client().getIntTransient(kBrightness).value, 33);
    EXPECT_EQ(errorLines(), Names{couldNotWrite(kDiskFull)});
}

TEST_F(StoreFailure, ApplyAnswers17NamingTheFileAndKeepsTheValueApplied)
{
    const auto applied = applyBrightness(33);
    EXPECT_EQ(applied.status, 17);
    EXPECT_EQ(applied.failedId, storePath());
    EXPECT_EQ(client().getIntTransient(kBrightness).value, 33);
    EXPECT_EQ(storeText(), kStoreText);
    EXPECT_EQ(dataFiles(), (Names{"display.json", "filler"}));
}

TEST_F(StoreFailure, ApplyNotPersistentWritesNothingAndAnswers0)
{
    const auto applied = monitor().apply({{kBrightness, g_variant_new_int32(33)}}, false);
    EXPECT_EQ(applied.status, 0);
    EXPECT_EQ(applied.failedId, "");
    EXPECT_TRUE(monitor().storeStatus().allWritten);
}

TEST_F(StoreFailure, StoreStatusNamesTheFileWithItsError)
{
    const auto before = monitor().storeStatus();
    EXPECT_TRUE(before.allWritten);
    EXPECT_EQ(before.failing, Pairs{});
    ASSERT_EQ(applyBrightness(33).status, 17);
    const auto after = monitor().storeStatus();
    EXPECT_FALSE(after.allWritten);
    EXPECT_EQ(after.failing, (Pairs{{storePath(), kDiskFull}}));
}

TEST_F(StoreFailure, OneErrorLinePerDistinctErrorOverManyRetries)
{
    for (int brightness = 30; brightness < 35; ++brightness) {
        ASSERT_EQ(commitThroughAdaptor(brightness), 0);
    }
    ASSERT_TRUE(disk().setReadOnly(true));
    for (int brightness = 40; brightness < 45; ++brightness) {
        ASSERT_EQ(commitThroughAdaptor(brightness), 0);
    }
    ASSERT_TRUE(disk().setReadOnly(false));
    for (int brightness = 50; brightness < 55; ++brightness) {
        ASSERT_EQ(commitThroughAdaptor(brightness), 0);
    }
    EXPECT_EQ(errorLines(), (Names{couldNotWrite(kDiskFull), couldNotWrite(kReadOnly),
                                   couldNotWrite(kDiskFull)}));
}

TEST_F(StoreFailure, SpaceFreedLetsTheTimerWriteTheFileWithinItsPeriodAndARestartShowsIt)
{
    const auto failedAt = std::chrono::steady_clock::now();
    ASSERT_EQ(applyBrightness(33).status, 17);
    disk().free();
    const std::string notice = "[NOT] " + storePath() + " written after 1 failed attempt";
    const auto bound = std::chrono::duration_cast<std::chrono::milliseconds>(
        failedAt + kRetryPeriod + kRetryMargin - std::chrono::steady_clock::now());
    ASSERT_TRUE(service().waitForLine(notice, bound)) << tail(service());
    EXPECT_EQ(nlohmann::json::parse(storeText())["display"]["brightness"], 33);
    EXPECT_EQ(dataFiles(), Names{"display.json"});
    const auto status = monitor().storeStatus();
    EXPECT_TRUE(status.allWritten);
    EXPECT_EQ(status.failing, Pairs{});

    ASSERT_EQ(kill(servicePid(), SIGTERM), 0);
    ASSERT_EQ(service().waitExit(kExitBound), 0);
    ASSERT_TRUE(startService("restarted"));
    EXPECT_EQ(newClient().getIntTransient(kBrightness).value, 33);
}

// The values to go back to cannot be kept on disk: no change is offered on
// approval, and nothing is changed.
TEST_F(StoreFailure, ApplyConfirmedAnswers17NamingTheRollbackFileAndChangesNothing)
{
    const auto applied = monitor().applyConfirmed({{kBrightness, g_variant_new_int32(33)}}, 600);
    EXPECT_EQ(applied.status, 17);
    EXPECT_EQ(applied.failedId, dir().file("data/plix-rollback.json"));
    EXPECT_EQ(applied.token, "");
    EXPECT_FALSE(monitor().pending().pending);
    EXPECT_EQ(client().getIntTransient(kBrightness).value, 80);
    EXPECT_EQ(storeText(), kStoreText);
    EXPECT_EQ(dataFiles(), (Names{"display.json", "filler"}));
    EXPECT_EQ(errorLines(), Names{"[ERR] Cannot write " + dir().file("data/plix-rollback.json") +
                                  ": " + kDiskFull});
}
