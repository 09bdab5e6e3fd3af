// The service killed at random moments while it commits persistent
// transactions, or applies, confirms and puts back changes with a
// confirmation window, as a power loss would stop it: every JSON store file
// must always hold either the document before the commit or the one after
// it, and the service must start again on it and read back what it holds.
//
//   integration_power_loss_tests [--cycles=N] [--seed=N] [gtest options]
//
// The default of 200 cycles keeps the run to a few minutes; the full check
// is --cycles=1000. The seed of the kill times is printed; --seed repeats a
// run.

#include "PlixIntegrationTest.h"
#include "PlixWait.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <random>
#include <thread>

namespace {
int gCycles = 200;
unsigned gSeed = 0;
constexpr int kMaxKillDelayMs = 150;
const char* const kCounterId = "load/counter";

// Commits persistent transactions that count upwards until the service
// stops answering; remembers the last value the service confirmed.
class PlixCommitLoop
{
public:
    PlixCommitLoop(const std::string& address, int first)
        : mClient(address), mConfirmed(first - 1), mThread([this, first] { commitFrom(first); })
    {
    }
    ~PlixCommitLoop()
    {
        if (mThread.joinable()) {
            mThread.join();
        }
    }
    PlixCommitLoop(const PlixCommitLoop&) = delete;
    PlixCommitLoop& operator=(const PlixCommitLoop&) = delete;

    // Waits until the service stopped answering.
    int confirmedAfterEnd()
    {
        mThread.join();
        return mConfirmed;
    }

private:
    void commitFrom(int value)
    {
        while (mClient.transactionStart(true) == 0 && mClient.setInt(kCounterId, value) == 0 &&
               mClient.transactionStop() == 0) {
            mConfirmed = value++;
        }
    }

    PlixBusClient mClient;
    int mConfirmed;
    std::thread mThread;
};

// Changes the counter upwards with confirmation windows until the service
// stops answering: every other change is confirmed, the others cancelled.
// Remembers the value the store keeps by the answers it had, and the value
// of a confirmation under way, which the store may or may not keep.
class PlixConfirmLoop
{
public:
    PlixConfirmLoop(const std::string& address, int kept)
        : mClient(address), mKept(kept), mConfirming(kept), mThread([this] { changeFrom(); })
    {
    }
    ~PlixConfirmLoop()
    {
        if (mThread.joinable()) {
            mThread.join();
        }
    }
    PlixConfirmLoop(const PlixConfirmLoop&) = delete;
    PlixConfirmLoop& operator=(const PlixConfirmLoop&) = delete;

    // Waits until the service stopped answering; whether the store may hold
    // this counter.
    bool mayHold(int counter)
    {
        mThread.join();
        return counter == mKept || counter == mConfirming;
    }

private:
    void changeFrom()
    {
        for (int value = mKept + 1;; ++value) {
            const std::string token = applyConfirmed(value);
            if (token.empty()) {
                return;
            }
            const bool keep = value % 2 == 0;
            mConfirming = keep ? value : mKept;
            if (call(keep ? "Confirm" : "Cancel", g_variant_new("(s)", token.c_str())) != 0) {
                return;
            }
            mKept = mConfirming;
        }
    }

    std::string applyConfirmed(int value)
    {
        GVariantBuilder changes;
        g_variant_builder_init(&changes, G_VARIANT_TYPE_VARDICT);
        g_variant_builder_add(&changes, "{sv}", kCounterId, g_variant_new_int32(value));
        const PlixGVariantPtr reply =
            mClient.call(PlixBusClient::kServiceName, PlixBusClient::kAdaptorPath, kMonitor,
                         "ApplyConfirmed", g_variant_new("(a{sv}u)", &changes, 3600u));
        gint32 status = -1;
        const gchar* failedId = nullptr;
        const gchar* token = "";
        if (reply) {
            g_variant_get(reply.get(), "(i&s&s)", &status, &failedId, &token);
        }
        return status == 0 ? token : "";
    }

    int call(const char* method, GVariant* params)
    {
        const PlixGVariantPtr reply = mClient.call(
            PlixBusClient::kServiceName, PlixBusClient::kAdaptorPath, kMonitor, method, params);
        gint32 status = -1;
        if (reply) {
            g_variant_get(reply.get(), "(i)", &status);
        }
        return status;
    }

    static constexpr const char* kMonitor = "com.orvanta.plix.Monitor";
    PlixBusClient mClient;
    int mKept;
    int mConfirming;
    std::thread mThread;
};
} // namespace

class PowerLossTest : public PlixIntegrationTest
{
protected:
    nlohmann::json storeOrNull()
    {
        return nlohmann::json::parse(fileText("store.json"), nullptr, false);
    }

    // Kills the service gCycles times while it commits to "store.json".
    void killDuringCommits(const std::string& xml);
};

void PowerLossTest::killDuringCommits(const std::string& xml)
{
    const nlohmann::json original = storeOrNull();
    std::mt19937 random(gSeed);
    int counter = original["load"]["counter"].get<int>();
    for (int cycle = 0; cycle < gCycles && !HasFailure(); ++cycle) {
        PlixServiceProcess& service = start({"-c", xml}, {}, "cycle" + std::to_string(cycle));
        ASSERT_TRUE(waitServing(service)) << "cycle " << cycle << ":\n" << tail(service);
        // The service started again on what the last kill left.
        PlixBusClient reader(bus().address());
        ASSERT_EQ(reader.getIntTransient(kCounterId).value, counter) << "cycle " << cycle;

        const pid_t pid = servicePid();
        ASSERT_GT(pid, 0);
        PlixCommitLoop loop(bus().address(), counter + 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(
            std::uniform_int_distribution<int>(0, kMaxKillDelayMs)(random)));
        ::kill(pid, SIGKILL);
        const int confirmed = loop.confirmedAfterEnd();
        ASSERT_TRUE(service.waitExit(kExitBound).has_value()) << "cycle " << cycle;

        nlohmann::json store = storeOrNull();
        ASSERT_FALSE(store.is_discarded()) << "cycle " << cycle << ": " << fileText("store.json");
        counter = store["load"]["counter"].get<int>();
        // The last confirmed commit, or the one under way when it was killed.
        EXPECT_TRUE(counter == confirmed || counter == confirmed + 1)
            << "seed " << gSeed << ", cycle " << cycle << ": " << counter << " after " << confirmed
            << " confirmed";
        store["load"]["counter"] = original["load"]["counter"];
        EXPECT_EQ(store, original) << "seed " << gSeed << ", cycle " << cycle;
    }
    std::cout << "power loss: " << gCycles << " kills, " << counter << " commits kept\n";
    EXPECT_GT(counter, original["load"]["counter"].get<int>());
}

// Killed while it applies a change with a confirmation window, confirms it
// or puts it back: after every restart the store holds the change kept or
// the one being confirmed, as a whole, and nothing is pending any more.
TEST_F(PowerLossTest, KilledDuringConfirmedChangesComesBackWithTheKeptOrTheConfirmedDocument)
{
    const std::string xml = writeConfig();
    const nlohmann::json original = storeOrNull();
    std::mt19937 random(gSeed);
    int counter = original["load"]["counter"].get<int>();
    int windows = 0;
    for (int cycle = 0; cycle < gCycles && !HasFailure(); ++cycle) {
        PlixServiceProcess& service = start({"-c", xml}, {}, "cycle" + std::to_string(cycle));
        ASSERT_TRUE(waitServing(service)) << "cycle " << cycle << ":\n" << tail(service);
        PlixBusClient reader(bus().address());
        ASSERT_EQ(reader.getIntTransient(kCounterId).value, counter) << "cycle " << cycle;
        ASSERT_FALSE(std::filesystem::exists(dir().file("plix-rollback.json"))) << cycle;

        const pid_t pid = servicePid();
        ASSERT_GT(pid, 0);
        PlixConfirmLoop loop(bus().address(), counter);
        std::this_thread::sleep_for(std::chrono::milliseconds(
            std::uniform_int_distribution<int>(0, kMaxKillDelayMs)(random)));
        ::kill(pid, SIGKILL);
        ASSERT_TRUE(service.waitExit(kExitBound).has_value()) << "cycle " << cycle;

        nlohmann::json store = storeOrNull();
        ASSERT_FALSE(store.is_discarded()) << "cycle " << cycle << ": " << fileText("store.json");
        const bool pending = std::filesystem::exists(dir().file("plix-rollback.json"));
        windows += pending ? 1 : 0;
        const nlohmann::json rollback =
            pending ? nlohmann::json::parse(fileText("plix-rollback.json")) : nlohmann::json();
        // What the next start makes of the store: the rollback file's value
        // when one is left.
        counter = pending ? rollback["values"][0]["value"].get<int>()
                          : store["load"]["counter"].get<int>();
        EXPECT_TRUE(loop.mayHold(counter))
            << "seed " << gSeed << ", cycle " << cycle << ": " << counter;
        store["load"]["counter"] = original["load"]["counter"];
        EXPECT_EQ(store, original) << "seed " << gSeed << ", cycle " << cycle;
    }
    std::cout << "power loss with confirmations: " << gCycles << " kills, " << windows
              << " inside a window, counter " << counter << "\n";
}

TEST_F(PowerLossTest, KilledDuringPersistentCommitsLeavesTheOldOrTheNewDocument)
{
    killDuringCommits(writeConfig());
}

// The store file a link into another directory, which every rewrite keeps.
TEST_F(PowerLossTest, LinkedStoreKilledDuringPersistentCommitsLeavesTheOldOrTheNewDocument)
{
    const std::string xml = writeConfig();
    dir().makeDirectory("data");
    std::filesystem::rename(dir().file("store.json"), dir().file("data/store.json"));
    std::filesystem::create_symlink("data/store.json", dir().file("store.json"));
    killDuringCommits(xml);
    EXPECT_TRUE(std::filesystem::is_symlink(dir().file("store.json")));
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    gSeed = std::random_device{}();
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--cycles=", 9) == 0) {
            gCycles = std::max(1, std::stoi(argv[i] + 9));
        } else if (std::strncmp(argv[i], "--seed=", 7) == 0) {
            gSeed = static_cast<unsigned>(std::stoul(argv[i] + 7));
        } else {
            std::cerr << "integration_power_loss_tests: unknown argument " << argv[i] << "\n";
            return 2;
        }
    }
    std::cout << "power loss: seed " << gSeed << ", " << gCycles << " cycles\n";
    return RUN_ALL_TESTS();
}
