// A writer killed at random points of its writes must leave one whole
// document behind. The kills are timed from the moment the writer has read
// the store, over a window that follows the time one write takes here, and
// the test counts how many of them fell inside a write (the new file was
// there, not yet renamed over the store). The kills go on past their least
// number until enough of them did, within a bound: a run that cannot
// interrupt writes proves nothing and fails.
//
// The seed is printed; PLIX_POWER_LOSS_SEED=N repeats a run.
#include "PlixConfigTestDir.h"
#include "jzonFile.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <poll.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {
using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

constexpr int kLeastKills = 200;
// At least this many kills must land inside a write, within kMostKills (a
// share of 4 % at the worst; on a machine at rest about one kill in five does).
constexpr int kInterruptedKills = 40;
constexpr int kMostKills = 1000;
// The kills fall over this many write times after the writer is ready.
constexpr int kWindowInWrites = 4;
constexpr int kTimedWrites = 10;
constexpr int kReadyBoundMs = 20000;

Json documentWithState(const std::string& state)
{
    // A large member widens the window in which a write is under way.
    return Json{{"state", state}, {"padding", std::string(256 * 1024, 'p')}};
}

unsigned seedOfThisRun()
{
    const char* given = std::getenv("PLIX_POWER_LOSS_SEED");
    return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                            : std::random_device{}();
}

// The writer as a child whose standard output is the returned pipe end: it
// writes one byte there once it has read the store and starts writing.
pid_t startRewriteLoop(const std::string& path, int& ready)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return -1;
    }
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execl(PLIX_REWRITE_LOOP, PLIX_REWRITE_LOOP, path.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    ready = ends[0];
    return child;
}

bool waitReady(int ready)
{
    pollfd readable{ready, POLLIN, 0};
    char byte = 0;
    return poll(&readable, 1, kReadyBoundMs) == 1 && read(ready, &byte, 1) == 1;
}

// Kills the writer; false when it had ended by itself.
bool killWriter(pid_t child)
{
    ::kill(child, SIGKILL);
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status);
}

// How long one write of the document takes on this machine, now: the mean
// of a few writes by the same code the writer runs.
std::chrono::microseconds timeOfOneWrite(const std::string& path)
{
    jzonFile file(path);
    EXPECT_TRUE(file.read());
    std::string error;
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < kTimedWrites; ++i) {
        EXPECT_TRUE(file.write(error)) << error;
    }
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start) /
           kTimedWrites;
}

// Whether a write was under way: its new file is there beside the store
// file, in the directory where the writes land.
bool writeWasInterrupted(const std::string& directory)
{
    bool interrupted = false;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().filename() != "store.json") {
            interrupted = true;
            std::filesystem::remove(entry.path());
        }
    }
    return interrupted;
}

// Kills the writer of "store.json" at random points of its writes; each time
// the file holds one of the two documents whole. The writes land in
// writeDirectory.
void killWritersOf(const PlixConfigTestDir& dir, const std::string& writeDirectory,
                   const Json& first, const Json& second)
{
    const std::string path = dir.path("store.json");
    const unsigned seed = seedOfThisRun();
    const std::chrono::microseconds window = kWindowInWrites * timeOfOneWrite(path);
    std::cout << "power loss: seed " << seed << " (PLIX_POWER_LOSS_SEED repeats it), kills over "
              << window.count() << " us\n";
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> delayMicroseconds(0, window.count());
    int interrupted = 0;
    int kill = 0;
    for (; kill < kMostKills && (kill < kLeastKills || interrupted < kInterruptedKills); ++kill) {
        int ready = -1;
        const pid_t child = startRewriteLoop(path, ready);
        ASSERT_GT(child, 0);
        const bool started = waitReady(ready);
        close(ready);
        usleep(static_cast<useconds_t>(delayMicroseconds(random)));
        ASSERT_TRUE(killWriter(child)) << "the writer ended by itself";
        ASSERT_TRUE(started) << "the writer did not start within the bound";
        interrupted += writeWasInterrupted(writeDirectory) ? 1 : 0;
        const Json found = Json::parse(dir.read("store.json"), nullptr, false);
        ASSERT_TRUE(found == first || found == second)
            << "after kill " << kill << ", seed " << seed;
    }
    std::cout << "power loss: " << interrupted << " of " << kill << " kills interrupted a write\n";
    EXPECT_GE(interrupted, kInterruptedKills) << "seed " << seed;
}
} // namespace

TEST(jzonFilePowerLoss, KillingAWriterAtAnyPointLeavesOneWholeDocument)
{
    PlixConfigTestDir dir;
    const Json first = documentWithState("first");
    dir.write("store.json", first.dump(4) + "\n");
    killWritersOf(dir, dir.path(), first, documentWithState("second"));
}

TEST(jzonFilePowerLoss, KillingTheWriterOfALinkedFileLeavesOneWholeDocumentAndTheLink)
{
    PlixConfigTestDir dir;
    const Json first = documentWithState("first");
    std::filesystem::create_directory(dir.path("data"));
    dir.write("data/store.json", first.dump(4) + "\n");
    std::filesystem::create_symlink("data/store.json", dir.path("store.json"));
    killWritersOf(dir, dir.path("data"), first, documentWithState("second"));
    EXPECT_TRUE(std::filesystem::is_symlink(dir.path("store.json")));
}
