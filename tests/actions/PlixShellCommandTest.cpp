#include "PlixShellCommand.h"
#include "PlixTestDirectory.h"

#include <syslog.h>

#include <gtest/gtest.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {
// Plain text that a shell would read as code, or split, wherever it stood
// unchanged: blanks, both quotes, $, %, its own placeholder, backslashes
// (one at the end) and a line feed.
const std::string plainText = "it's \"plain\"  $HOME %v 100% \\back\\slash `x`\n\tend\\";

class PlixShellCommandRunTest : public testing::Test
{
protected:
    // What printf receives when command's %v stands for plainText.
    std::string printed(const std::string& command)
    {
        PlixShellCommand shellCommand(command + " > " + directory.file("out"));
        shellCommand.expand("v", plainText);
        CaptureStdout();
        const unsigned code = shellCommand.run(LOG_NOTICE, "done %s", "failed %s");
        GetCapturedStdout();
        EXPECT_EQ(code, 0u);
        return directory.read("out");
    }

    PlixTestDirectory directory;
};
} // namespace

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

TEST(PlixShellCommand, DoubleQuotedFormEscapesBackslashDollarBackquoteAndQuote)
{
    EXPECT_EQ(PlixShellCommand::doubleQuotedSafe("a\\b$c`d\"e'f g"), "a\\\\b\\$c\\`d\\\"e'f g");
}

TEST(PlixShellCommand, PercentInDoubleQuotedFormIsFollowedByAnEmptyQuotedPair)
{
    EXPECT_EQ(PlixShellCommand::doubleQuotedSafe("x%aux"), "x%\"\"aux");
}

TEST(PlixShellCommand, SingleQuotedFormClosesTheQuotesAroundTheUnquotedForm)
{
    EXPECT_EQ(PlixShellCommand::singleQuotedSafe("a b"), "''a b''");
    EXPECT_EQ(PlixShellCommand::singleQuotedSafe("plain"), "'plain'");
    EXPECT_EQ(PlixShellCommand::singleQuotedSafe("it's"), "''it'\\''s''");
}

TEST(PlixShellCommand, ExpandWritesTheFormForTheQuotingAroundEachPlaceholder)
{
    PlixShellCommand command("echo %v \"<%v>\" '<%v>' \"$(echo %v)\"");
    command.expand("v", "a b");
    EXPECT_EQ(command.text(), "echo 'a b' \"<a b>\" '<''a b''>' \"$(echo 'a b')\"");
    EXPECT_EQ(command.refusal(), "");
}

TEST(PlixShellCommand, PlaceholderWhereNoFormIsSafeRefusesTheCommand)
{
    PlixShellCommand command("echo %v \\%v");
    command.expand("v", "x");
    EXPECT_EQ(command.refusal(), "%v after a backslash");
}

TEST(PlixShellCommand, NothingIsExpandedAfterARefusal)
{
    PlixShellCommand command("echo `echo %a` %b");
    command.expand("a", "x");
    command.expand("b", "y");
    EXPECT_EQ(command.refusal(), "%a inside backquotes");
    EXPECT_EQ(command.text(), "echo `echo %a` %b");
}

TEST(PlixShellCommand, RefusedCommandDoesNotRunAndLogsTheDeclaredCommandWith13)
{
    PlixTestDirectory directory;
    const std::string declared = "touch " + directory.file("ran") + " # %v";
    PlixShellCommand command(declared);
    command.expand("v", "x");
    CaptureStdout();
    EXPECT_EQ(command.run(LOG_NOTICE, "done %s", "failed %s"), 13u);
    EXPECT_EQ(GetCapturedStdout(), "[NOT] failed " + declared + "\n");
    EXPECT_FALSE(directory.exists("ran"));
}

TEST(PlixShellCommand, RefusalOfACommandNamesItsFirstRefusedPlaceholder)
{
    EXPECT_EQ(PlixShellCommand::refusalOf("cat %a <<EOF\n%b\nEOF", {"a", "b"}),
              "%b in a here-document");
    EXPECT_EQ(PlixShellCommand::refusalOf("cat %a <<EOF\n%b\nEOF", {"a"}), "");
    EXPECT_EQ(PlixShellCommand::refusalOf("echo \"%a\" '%b'", {"a", "b"}), "");
}

TEST_F(PlixShellCommandRunTest, UnquotedPlaceholderPassesTheTextByteForByte)
{
    EXPECT_EQ(printed("printf '%s' %v"), plainText);
}

TEST_F(PlixShellCommandRunTest, DoubleQuotedPlaceholderPassesTheTextByteForByte)
{
    EXPECT_EQ(printed("printf '%s' \"<%v>\""), "<" + plainText + ">");
}

TEST_F(PlixShellCommandRunTest, SingleQuotedPlaceholderPassesTheTextByteForByte)
{
    EXPECT_EQ(printed("printf '%s' '<%v>'"), "<" + plainText + ">");
}

TEST_F(PlixShellCommandRunTest, PlaceholdersInsideSubstitutionsPassTheTextByteForByte)
{
    EXPECT_EQ(printed("printf '%s' \"$(printf '%s' %v)\""), plainText);
    EXPECT_EQ(printed("printf '%s' \"$(printf '%s' \"%v\")\""), plainText);
    EXPECT_EQ(printed("printf '%s' \"$(printf '%s' '%v')\""), plainText);
}
