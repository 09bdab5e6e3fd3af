#include "PlixCommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

PlixCommandLine parse(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "dbus-ex-plix");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(&argument[0]);
    }
    pointers.push_back(nullptr);
    return PlixCommandLine(static_cast<int>(arguments.size()), pointers.data());
}

} // namespace

TEST(PlixCommandLineTest, NoOptionsGiveNoPathAndNoTrigger)
{
    const PlixCommandLine options = parse({});
    EXPECT_FALSE(options.pathGiven());
    EXPECT_FALSE(options.triggerOnStart());
    EXPECT_FALSE(options.usageRequested());
}

TEST(PlixCommandLineTest, SAndCAreTaken)
{
    testing::internal::CaptureStdout();
    const PlixCommandLine options = parse({"-s", "-c", "/tmp/x.xml"});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[NFO] XML Config File Path: /tmp/x.xml\n");
    EXPECT_TRUE(options.triggerOnStart());
    EXPECT_TRUE(options.pathGiven());
    EXPECT_EQ(options.configPath(), "/tmp/x.xml");
}

TEST(PlixCommandLineTest, EmptyPathCountsAsGiven)
{
    const PlixCommandLine options = parse({"-c", ""});
    EXPECT_TRUE(options.pathGiven());
    EXPECT_EQ(options.configPath(), "");
}

TEST(PlixCommandLineTest, SecondParseSeesWholeLineAgain)
{
    parse({"-s"});
    EXPECT_TRUE(parse({"-s"}).triggerOnStart());
}

// "-hs" asks for the usage text at h; the s left unread belongs to that line
// alone and must not turn up in the next one.
TEST(PlixCommandLineTest, AParseThatStoppedInsideAGroupLeavesNothingForTheNext)
{
    char program[] = "dbus-ex-plix";
    char group[] = "-hs";
    char* first[] = {program, group, nullptr};
    EXPECT_TRUE(PlixCommandLine(2, first).usageRequested());
    const PlixCommandLine next = parse({"-d"});
    EXPECT_FALSE(next.triggerOnStart());
    EXPECT_FALSE(next.usageRequested());
}

TEST(PlixCommandLineTest, HelpAndUnknownOptionRequestUsage)
{
    EXPECT_TRUE(parse({"-h"}).usageRequested());
    EXPECT_TRUE(parse({"-q"}).usageRequested());
    EXPECT_TRUE(parse({"-c"}).usageRequested());
    EXPECT_FALSE(parse({"-d"}).usageRequested());
}
