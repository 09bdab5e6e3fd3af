#include "PlixConfigTestDir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {
using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

// Bounds of the window in which the kills fall: at least what an idle
// machine needs for a few writes, at most what keeps 200 kills short.
constexpr auto shortestWindow = std::chrono::milliseconds(20);
constexpr auto longestWindow = std::chrono::milliseconds(150);
constexpr auto firstWriteBound = std::chrono::seconds(20);

Json documentWithState(const std::string& state)
{
    // A large member widens the window in which a write is under way.
    return Json{{"state", state}, {"padding", std::string(256 * 1024, 'p')}};
}

pid_t startRewriteLoop(const std::string& path)
{
    pid_t child = fork();
    if (child == 0) {
        execl(PLIX_REWRITE_LOOP, PLIX_REWRITE_LOOP, path.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    return child;
}

// Kills the writer; false when it had ended by itself.
bool killWriter(pid_t child)
{
    ::kill(child, SIGKILL);
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status);
}

Json parsed(const PlixConfigTestDir& dir)
{
    return Json::parse(dir.read("store.json"), nullptr, false);
}

// How long the writer needs, on this machine and under its present load, to
// start and complete its first write (the one that stores "second").
Clock::duration timeToFirstWrite(const PlixConfigTestDir& dir, const Json& second)
{
    const Clock::time_point start = Clock::now();
    pid_t child = startRewriteLoop(dir.path("store.json"));
    EXPECT_GT(child, 0);
    // Whether "second" was seen is decided before the kill: a slow machine
    // (an emulated one) may complete the next write, "first", meanwhile.
    bool written = false;
    while (!(written = parsed(dir) == second) && Clock::now() - start < firstWriteBound) {
        usleep(1000);
    }
    const Clock::duration needed = Clock::now() - start;
    EXPECT_TRUE(killWriter(child)) << "the writer ended by itself";
    EXPECT_TRUE(written) << "no write completed within the bound";
    return needed;
}

// Kills the writer of "store.json" 200 times at random points of its writes;
// each time the file holds one of the two documents whole.
void killWritersOf(const PlixConfigTestDir& dir, const Json& first, const Json& second)
{
    const std::string path = dir.path("store.json");
    // The kills must reach into the writes themselves however busy the
    // machine is, so the window grows with the time a first write takes.
    const auto window = std::clamp(
        std::chrono::duration_cast<std::chrono::microseconds>(3 * timeToFirstWrite(dir, second)),
        std::chrono::microseconds(shortestWindow), std::chrono::microseconds(longestWindow));
    std::mt19937 random(20240601);
    std::uniform_int_distribution<long> delayMicroseconds(0, window.count());
    for (int kill = 0; kill < 200; ++kill) {
        pid_t child = startRewriteLoop(path);
        ASSERT_GT(child, 0);
        usleep(static_cast<useconds_t>(delayMicroseconds(random)));
        ASSERT_TRUE(killWriter(child)) << "the writer ended by itself";
        std::string text = dir.read("store.json");
        ASSERT_FALSE(text.empty()) << "after kill " << kill;
        Json found = Json::parse(text, nullptr, false);
        ASSERT_TRUE(found == first || found == second) << "after kill " << kill;
    }
}
} // namespace

TEST(jzonFilePowerLoss, KillingAWriterAtAnyPointLeavesOneWholeDocument)
{
    PlixConfigTestDir dir;
    const Json first = documentWithState("first");
    dir.write("store.json", first.dump(4) + "\n");
    killWritersOf(dir, first, documentWithState("second"));
}

TEST(jzonFilePowerLoss, KillingTheWriterOfALinkedFileLeavesOneWholeDocumentAndTheLink)
{
    PlixConfigTestDir dir;
    const Json first = documentWithState("first");
    std::filesystem::create_directory(dir.path("data"));
    dir.write("data/store.json", first.dump(4) + "\n");
    std::filesystem::create_symlink("data/store.json", dir.path("store.json"));
    killWritersOf(dir, first, documentWithState("second"));
    EXPECT_TRUE(std::filesystem::is_symlink(dir.path("store.json")));
}
