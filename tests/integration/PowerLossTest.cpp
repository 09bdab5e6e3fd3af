// The service killed at random moments while it commits persistent
// transactions, as a power loss would stop it: every JSON store file must
// always hold either the document before the commit or the one after it,
// and the service must start again on it and read back what it holds.
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
