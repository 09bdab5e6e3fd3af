#include "PlixShellCommand.h"
#include "PlixTestDirectory.h"

#include <syslog.h>

#include <gtest/gtest.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(PlixShellCommand, PlainWordsAreInsertedAsTheyStand)
{
    EXPECT_EQ(PlixShellCommand::shellSafe("Station_1.a-b:c/d@e+f=g,h"),
              "Station_1.a-b:c/d@e+f=g,h");
    EXPECT_EQ(PlixShellCommand::shellSafe("-12"), "-12");
    EXPECT_EQ(PlixShellCommand::shellSafe("1e+07"), "1e+07");
}

TEST(PlixShellCommand, EmptyTextIsInsertedAsAnEmptyQuotedWord)
{
    EXPECT_EQ(PlixShellCommand::shellSafe(""), "''");
}

TEST(PlixShellCommand, TextWithOtherCharactersIsQuotedForTheShell)
{
    EXPECT_EQ(PlixShellCommand::shellSafe("a b"), "'a b'");
    EXPECT_EQ(PlixShellCommand::shellSafe(";reboot"), "';reboot'");
    EXPECT_EQ(PlixShellCommand::shellSafe("it's"), "'it'\\''s'");
}

TEST(PlixShellCommand, PercentInQuotedTextIsFollowedByAnEmptyQuotedPair)
{
    EXPECT_EQ(PlixShellCommand::shellSafe("x%aux"), "'x%''aux'");
}

TEST(PlixShellCommand, ExpandReplacesEveryPlaceholder)
{
    PlixShellCommand command("set %v and %v");
    command.expand("v", "7");
    EXPECT_EQ(command.text(), "set 7 and 7");
}

TEST(PlixShellCommand, ExpandLeavesOtherPlaceholdersAlone)
{
    PlixShellCommand command("set %v %w");
    command.expand("v", "7");
    EXPECT_EQ(command.text(), "set 7 %w");
}

TEST(PlixShellCommand, QuotedPercentTextRunsAsTheOriginalText)
{
    PlixTestDirectory directory;
    PlixShellCommand command("printf '%s' %v > " + directory.file("out"));
    command.expand("v", "x%aux");
    CaptureStdout();
    EXPECT_EQ(command.run(LOG_NOTICE, "done %s", "failed %s"), 0u);
    GetCapturedStdout();
    EXPECT_EQ(directory.read("out"), "x%aux");
}

TEST(PlixShellCommand, ExitStatusAboveZeroLogsTheFailureFormatAndGives13)
{
    PlixShellCommand command("exit 3");
    CaptureStdout();
    EXPECT_EQ(command.run(LOG_WARNING, "done %s", "failed %s"), 13u);
    EXPECT_EQ(GetCapturedStdout(), "[NOT] failed exit 3\n");
}

TEST(PlixShellCommand, ExitStatusZeroLogsTheDoneFormatAtTheGivenLevel)
{
    PlixShellCommand command("exit 0");
    CaptureStdout();
    EXPECT_EQ(command.run(LOG_INFO, "done %s", "failed %s"), 0u);
    EXPECT_EQ(GetCapturedStdout(), "[NFO] done exit 0\n");
}
