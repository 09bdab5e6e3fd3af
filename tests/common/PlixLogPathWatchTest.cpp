#include "PlixLogPathWatch.h"
#include "PlixTestLogger.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {
const PlixLogPathWatch::Clock::time_point start{};

void createFile(const std::string& path)
{
    close(open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
}
} // namespace

TEST(PlixLogPathWatch, FirstLookIsAtOnce)
{
    PlixTestLogDir dir;
    PlixLogPathWatch watch(dir.file("log"));
    EXPECT_TRUE(watch.due(start));
}

TEST(PlixLogPathWatch, AnAbsentPathIsLookedAtOnceASecond)
{
    PlixTestLogDir dir;
    PlixLogPathWatch watch(dir.file("log"));
    ASSERT_TRUE(watch.due(start));
    EXPECT_FALSE(watch.due(start + 1ms));
    EXPECT_FALSE(watch.due(start + 999ms));
    EXPECT_TRUE(watch.due(start + 1s));
    EXPECT_FALSE(watch.due(start + 1500ms));
}

TEST(PlixLogPathWatch, TheSocketAppearingInItsDirectoryIsSeenAtOnce)
{
    PlixTestLogDir dir;
    PlixLogPathWatch watch(dir.file("log"));
    watch.arm(start);
    createFile(dir.file("log"));
    EXPECT_TRUE(watch.due(start + 1ms));
    EXPECT_FALSE(watch.due(start + 2ms));
}

TEST(PlixLogPathWatch, ALinkTargetAppearingInADirectoryMadeLaterIsSeenAtOnce)
{
    PlixTestLogDir dir;
    ASSERT_EQ(symlink(dir.file("journal/socket").c_str(), dir.file("log").c_str()), 0);
    PlixLogPathWatch watch(dir.file("log"));
    watch.arm(start);
    ASSERT_EQ(mkdir(dir.file("journal").c_str(), 0700), 0);
    EXPECT_TRUE(watch.due(start + 1ms));
    createFile(dir.file("journal/socket"));
    EXPECT_TRUE(watch.due(start + 2ms));
}

TEST(PlixLogPathWatch, TheEndOfARelativeChainOfTwoLinksIsWatched)
{
    PlixTestLogDir dir;
    ASSERT_EQ(mkdir(dir.file("run").c_str(), 0700), 0);
    ASSERT_EQ(mkdir(dir.file("run/journal").c_str(), 0700), 0);
    ASSERT_EQ(symlink("run/link", dir.file("log").c_str()), 0);
    ASSERT_EQ(symlink("journal/socket", dir.file("run/link").c_str()), 0);
    PlixLogPathWatch watch(dir.file("log"));
    watch.arm(start);
    createFile(dir.file("run/journal/socket"));
    EXPECT_TRUE(watch.due(start + 1ms));
}

TEST(PlixLogPathWatch, ArmingAgainForgetsEarlierChanges)
{
    PlixTestLogDir dir;
    PlixLogPathWatch watch(dir.file("log"));
    watch.arm(start);
    createFile(dir.file("other"));
    watch.arm(start + 1ms);
    EXPECT_FALSE(watch.due(start + 2ms));
}
