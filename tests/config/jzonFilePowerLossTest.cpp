#include "PlixConfigTestDir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {
using Json = nlohmann::ordered_json;

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
} // namespace

TEST(jzonFilePowerLoss, KillingAWriterAtAnyPointLeavesOneWholeDocument)
{
    PlixConfigTestDir dir;
    const Json first = documentWithState("first");
    const Json second = documentWithState("second");
    std::string path = dir.write("store.json", first.dump(4) + "\n");
    std::mt19937 random(20240601);
    std::uniform_int_distribution<int> delayMicroseconds(0, 20000);
    int secondSeen = 0;
    for (int kill = 0; kill < 200; ++kill) {
        pid_t child = startRewriteLoop(path);
        ASSERT_GT(child, 0);
        usleep(static_cast<useconds_t>(delayMicroseconds(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer ended by itself, status " << status;
        std::string text = dir.read("store.json");
        ASSERT_FALSE(text.empty()) << "after kill " << kill;
        Json found = Json::parse(text, nullptr, false);
        ASSERT_TRUE(found == first || found == second) << "after kill " << kill;
        secondSeen += found == second ? 1 : 0;
    }
    EXPECT_GT(secondSeen, 0) << "no write completed before any kill";
}
