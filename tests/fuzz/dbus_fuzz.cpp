// Fuzzes the service over the bus: the real dbus-ex-plix on a private bus
// (the integration tests' harness) gets random and hostile calls of every
// method of every interface from many clients at once. It must answer each
// one with a status the call may get (or the standard D-Bus error for
// arguments of the wrong types), never crash or hang, and its resident
// memory must stay flat once warmed up.
//
//   dbus_fuzz [--seed=N] [--seconds=N] [gtest options]
//
// The seed is printed at the start; a failing run is repeated exactly (as
// far as the interleaving of clients allows) with --seed. The default run
// takes about two minutes; a longer one is, for example, --seconds=3600.

#include "PlixBusFuzzRun.h"
#include "PlixServingTest.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iostream>
#include <sstream>

namespace {
constexpr int kClients = 8;
constexpr long kRssToleranceKiB = 4096;
// AddressSanitizer holds freed memory back in its quarantine, so a service
// built with it grows by design; its memory is then checked by the sanitizer.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kMeasureMemory = false;
#else
constexpr bool kMeasureMemory = true;
#endif

unsigned gSeed = 0;
int gSeconds = 100;

// The values of the test configuration (tests/integration/data).
const std::vector<std::string> kDeclaredIds{
    "general/count",  "general/ratio",    "general/label",  "general/enabled", "general/mode",
    "general/secret", "general/marker",   "general/broken", "ports/mainport",  "ports/displayport",
    "ports/httpport", "fixed/serial",     "eth0/dhcp",      "eth0/ipaddress",  "eth0/subnetmask",
    "eth0/gateway",   "startup/greeting", "load/constant",  "load/counter"};

long residentKiB(pid_t pid)
{
    std::istringstream status(PlixTestDir::readFile("/proc/" + std::to_string(pid) + "/status"));
    std::string key;
    long value = -1;
    while (status >> key) {
        if (key == "VmRSS:") {
            status >> value;
            break;
        }
    }
    return value;
}

std::string codeCounts(const std::map<int, long>& codes)
{
    std::string text;
    for (const auto& [code, count] : codes) {
        text += " " + std::to_string(code) + ":" + std::to_string(count);
    }
    return text;
}

int countLines(const std::vector<std::string>& lines, const std::string& line)
{
    return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}
} // namespace

class DBusFuzzTest : public PlixServingTest
{
};

TEST_F(DBusFuzzTest, RandomCallsFromManyClientsGetOnlyAllowedAnswers)
{
    const pid_t pid = servicePid();
    ASSERT_GT(pid, 0);
    const std::string owner = bus().nameOwner(PlixBusClient::kServiceName);
    const bool withMonitor =
        client().introspect("/plix").find("com.orvanta.plix.Monitor") != std::string::npos;

    std::mt19937 random(gSeed);
    PlixFuzzCallMaker maker(random, kDeclaredIds, withMonitor);
    PlixBusFuzzRun run(bus().address(), maker, random, kClients);
    // The first quarter warms the service up: its heap and GLib's caches
    // reach their working size; from then on its memory must stay flat.
    run.run(std::chrono::seconds(gSeconds / 4));
    const long warmKiB = residentKiB(pid);
    run.run(std::chrono::seconds(gSeconds - gSeconds / 4));
    const long endKiB = residentKiB(pid);

    std::cout << "dbus_fuzz: seed " << gSeed << ", " << run.answered() << " answers, "
              << run.hangUps() << " hang-ups, " << run.silences() << " silences, resident "
              << warmKiB << " KiB after warm-up, " << endKiB << " KiB at the end; codes"
              << codeCounts(run.codes()) << "\n";
    for (const auto& example : run.wrongExamples()) {
        ADD_FAILURE() << "seed " << gSeed << ": " << example;
    }
    EXPECT_EQ(run.wrong(), 0) << "seed " << gSeed;
    EXPECT_TRUE(service().running()) << tail(service());
    EXPECT_EQ(bus().nameOwner(PlixBusClient::kServiceName), owner);
    EXPECT_EQ(client().getIntTransient("load/constant").status, 0);
    EXPECT_GT(warmKiB, 0);
    if (kMeasureMemory) {
        EXPECT_LE(endKiB - warmKiB, kRssToleranceKiB)
            << "seed " << gSeed << ": growth of the resident memory from the end of the warm-up "
            << "to the end of three times as long with the same calls";
    }
    EXPECT_GT(run.answered(), 1000);
    // Silent holders must have lost their transactions to the time-out.
    EXPECT_GT(countLines(lines(), "[NOT] Client timeout!"), 0);
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    gSeed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count() &
                                  0x7fffffff);
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--seed=", 7) == 0) {
            gSeed = static_cast<unsigned>(std::stoul(argv[i] + 7));
        } else if (std::strncmp(argv[i], "--seconds=", 10) == 0) {
            gSeconds = std::max(4, std::stoi(argv[i] + 10));
        } else {
            std::cerr << "dbus_fuzz: unknown argument " << argv[i] << "\n";
            return 2;
        }
    }
    std::cout << "dbus_fuzz: seed " << gSeed << ", " << gSeconds << " seconds\n";
    return RUN_ALL_TESTS();
}
