#include "PlixValueOnChangeExecute.h"
#include "PlixHostileValues.h"
#include "PlixTestDataSet.h"
#include "PlixTestDirectory.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixValueOnChangeExecuteTest : public testing::Test
{
protected:
    // Runs the action with capture of standard output; returns the code.
    unsigned runWith(const std::string& command, const PlixVariant& content)
    {
        hostname.setValue(content);
        action.setCommand(command);
        CaptureStdout();
        const unsigned code = action.onChange();
        output = GetCapturedStdout();
        return code;
    }

    PlixTestDirectory directory;
    PlixTestDataSet dataSet;
    PlixValue& hostname = dataSet.add("hostname", PlixVariant(""));
    PlixValueOnChangeExecute action{hostname};
    std::string output;
};

} // namespace

TEST_F(PlixValueOnChangeExecuteTest, PlaceholderTwiceIsExpandedTwice)
{
    const std::string command = "printf '%s' %hostname-%hostname > " + directory.file("out");
    EXPECT_EQ(runWith(command, PlixVariant("press7")), 0u);
    EXPECT_EQ(directory.read("out"), "press7-press7");
}

TEST_F(PlixValueOnChangeExecuteTest, CommandWithoutPlaceholderRunsUnchanged)
{
    const std::string command = "printf '%s' fixed > " + directory.file("out");
    EXPECT_EQ(runWith(command, PlixVariant("press7")), 0u);
    EXPECT_EQ(directory.read("out"), "fixed");
    EXPECT_EQ(output, "[NOT] PlixValueOnChangeExecute executed following command successfully: " +
                          command + "\n");
}

TEST_F(PlixValueOnChangeExecuteTest, ValueContainingItsOwnPlaceholderIsInsertedOnce)
{
    const std::string command = "printf '%s' %hostname > " + directory.file("out");
    EXPECT_EQ(runWith(command, PlixVariant("a%hostname")), 0u);
    EXPECT_EQ(directory.read("out"), "a%hostname");
}

TEST_F(PlixValueOnChangeExecuteTest, SuccessLogsTheExpandedCommandAsNotice)
{
    const std::string out = directory.file("out");
    EXPECT_EQ(runWith("printf '%s' %hostname > " + out, PlixVariant("press7")), 0u);
    EXPECT_EQ(output, "[NOT] PlixValueOnChangeExecute executed following command successfully: "
                      "printf '%s' press7 > " +
                          out + "\n");
}

TEST_F(PlixValueOnChangeExecuteTest, ExitStatusOneGives13AndTheFailureLine)
{
    EXPECT_EQ(runWith("test %hostname = other", PlixVariant("press7")), 13u);
    EXPECT_EQ(
        output,
        "[NOT] PlixValueOnChangeExecute failed with following command: test press7 = other\n");
}

TEST_F(PlixValueOnChangeExecuteTest, ExitStatusZeroGivesZero)
{
    EXPECT_EQ(runWith("test %hostname = press7", PlixVariant("press7")), 0u);
}

TEST_F(PlixValueOnChangeExecuteTest, PercentFollowedByAnotherNameStays)
{
    const std::string command = "printf '%s' %hostname%other > " + directory.file("out");
    EXPECT_EQ(runWith(command, PlixVariant("press7")), 0u);
    EXPECT_EQ(directory.read("out"), "press7%other");
}

TEST_F(PlixValueOnChangeExecuteTest, NonStringValuesAreInsertedAsTheirText)
{
    const std::string command = "printf '%s' %hostname > " + directory.file("out");
    EXPECT_EQ(runWith(command, PlixVariant(true)), 0u);
    EXPECT_EQ(directory.read("out"), "true");
    EXPECT_EQ(runWith(command, PlixVariant(-5)), 0u);
    EXPECT_EQ(directory.read("out"), "-5");
}

TEST_F(PlixValueOnChangeExecuteTest, EmptyValueIsInsertedAsOneEmptyWord)
{
    const std::string command = "printf '[%s]' %hostname > " + directory.file("out");
    EXPECT_EQ(runWith(command, PlixVariant("")), 0u);
    EXPECT_EQ(directory.read("out"), "[]");
}

TEST_F(PlixValueOnChangeExecuteTest, HostileValuesCannotRunCommandsUnquotedOrQuoted)
{
    const std::string canary = directory.file("canary");
    for (const std::string quote : {"", "\"", "'"}) {
        const std::string command =
            "printf '%s' " + quote + "%hostname" + quote + " > " + directory.file("out");
        for (const std::string& hostile : hostileValues(canary)) {
            EXPECT_EQ(runWith(command, PlixVariant(hostile)), 0u) << command << hostile;
            EXPECT_EQ(directory.read("out"), hostile) << command;
            EXPECT_FALSE(directory.exists("canary")) << command << hostile;
        }
    }
}

TEST_F(PlixValueOnChangeExecuteTest, PlaceholderInsideBackquotesRefusesTheValueWith13)
{
    const std::string command = "touch " + directory.file("ran") + " `echo %hostname`";
    EXPECT_EQ(runWith(command, PlixVariant("press7")), 13u);
    EXPECT_EQ(output,
              "[NOT] PlixValueOnChangeExecute failed with following command: " + command + "\n");
    EXPECT_FALSE(directory.exists("ran"));
}

TEST_F(PlixValueOnChangeExecuteTest, RefusalNamesThePlaceholderAndWhereItStands)
{
    action.setCommand("echo %hostname \\%hostname");
    EXPECT_EQ(action.refusal(), "%hostname after a backslash");
    action.setCommand("echo \"%hostname\" '%hostname' %other`x`");
    EXPECT_EQ(action.refusal(), "");
}

TEST_F(PlixValueOnChangeExecuteTest, TriggerOnlyAtPlixBootMarksTheActionToBeSkippedAtCommit)
{
    EXPECT_FALSE(action.getTriggerOnlyAtPlixBoot());
    action.setTriggerOnlyAtPlixBoot();
    EXPECT_TRUE(action.getTriggerOnlyAtPlixBoot());
}

TEST_F(PlixValueOnChangeExecuteTest, TakesPartInStartUpTriggeringUntilClearedByTheDeclaration)
{
    EXPECT_TRUE(action.getTriggerOnPlixStart());
    action.setTriggerOnPlixStartFalse();
    EXPECT_FALSE(action.getTriggerOnPlixStart());
}
