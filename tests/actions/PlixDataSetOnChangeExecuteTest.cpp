#include "PlixDataSetOnChangeExecute.h"
#include "PlixHostileValues.h"
#include "PlixTestDataSet.h"
#include "PlixTestDirectory.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixDataSetOnChangeExecuteTest : public testing::Test
{
protected:
    unsigned run(const std::string& command)
    {
        action.setCommand(command);
        CaptureStdout();
        const unsigned code = action.onChange();
        output = GetCapturedStdout();
        return code;
    }

    PlixTestDirectory directory;
    PlixTestDataSet dataSet;
    PlixDataSetOnChangeExecute action{dataSet.get()};
    std::string output;
};

} // namespace

TEST_F(PlixDataSetOnChangeExecuteTest, EveryValuesPlaceholderIsExpanded)
{
    dataSet.add("ip", PlixVariant("192.168.0.10"));
    dataSet.add("mask", PlixVariant("255.255.255.0"));
    EXPECT_EQ(run("printf '%s %s' %ip %mask > " + directory.file("out")), 0u);
    EXPECT_EQ(directory.read("out"), "192.168.0.10 255.255.255.0");
}

TEST_F(PlixDataSetOnChangeExecuteTest,
       ValueNameThatPrefixesAnotherReplacesInsideTheLongerPlaceholder)
{
    dataSet.add("ip", PlixVariant("10.0.0.1"));
    dataSet.add("ipv6", PlixVariant("fe80::1"));
    EXPECT_EQ(run("printf '%s' %ipv6 > " + directory.file("out")), 0u);
    EXPECT_EQ(directory.read("out"), "10.0.0.1v6");
}

TEST_F(PlixDataSetOnChangeExecuteTest, SuccessLogsTheExpandedCommandAtWarningLevel)
{
    dataSet.add("port", PlixVariant(102));
    EXPECT_EQ(run("test %port -eq 102"), 0u);
    EXPECT_EQ(
        output,
        "[NOT] DataSetOnChangeExecute executed following command successfully: test 102 -eq 102\n");
}

TEST_F(PlixDataSetOnChangeExecuteTest, ExitStatusOneGives13AndTheFailureLine)
{
    dataSet.add("port", PlixVariant(102));
    EXPECT_EQ(run("test %port -eq 80"), 13u);
    EXPECT_EQ(output,
              "[NOT] DataSetOnChangeExecute failed with following command: test 102 -eq 80\n");
}

TEST_F(PlixDataSetOnChangeExecuteTest, CommandWithoutPlaceholdersRunsUnchanged)
{
    dataSet.add("port", PlixVariant(102));
    EXPECT_EQ(run("exit 0"), 0u);
    EXPECT_EQ(output,
              "[NOT] DataSetOnChangeExecute executed following command successfully: exit 0\n");
}

TEST_F(PlixDataSetOnChangeExecuteTest, QuotedValueHidesAnotherMembersPlaceholder)
{
    dataSet.add("v", PlixVariant("x%aux"));
    dataSet.add("aux", PlixVariant("$(touch " + directory.file("canary") + ")"));
    EXPECT_EQ(run("printf '%s|%s' %v %aux > " + directory.file("out")), 0u);
    EXPECT_EQ(directory.read("out"), "x%aux|$(touch " + directory.file("canary") + ")");
    EXPECT_FALSE(directory.exists("canary"));
}

TEST_F(PlixDataSetOnChangeExecuteTest, HostileValuesCannotRunCommandsUnquotedOrQuoted)
{
    const std::string canary = directory.file("canary");
    PlixValue& v = dataSet.add("v", PlixVariant(""));
    for (const std::string quote : {"", "\"", "'"}) {
        const std::string command =
            "printf '%s' " + quote + "%v" + quote + " > " + directory.file("out");
        for (const std::string& hostile : hostileValues(canary)) {
            v.setValue(PlixVariant(hostile));
            EXPECT_EQ(run(command), 0u) << command << hostile;
            EXPECT_EQ(directory.read("out"), hostile) << command;
            EXPECT_FALSE(directory.exists("canary")) << command << hostile;
        }
    }
}

TEST_F(PlixDataSetOnChangeExecuteTest, PlaceholderInAHereDocumentRefusesTheValuesWith13)
{
    dataSet.add("ip", PlixVariant("10.0.0.1"));
    dataSet.add("mask", PlixVariant("255.0.0.0"));
    const std::string command = "touch " + directory.file("ran") + " %ip; cat <<EOF\n%mask\nEOF";
    EXPECT_EQ(run(command), 13u);
    EXPECT_EQ(output,
              "[NOT] DataSetOnChangeExecute failed with following command: " + command + "\n");
    EXPECT_FALSE(directory.exists("ran"));
}

TEST_F(PlixDataSetOnChangeExecuteTest, RefusalNamesTheFirstMembersPlaceholderThatIsRefused)
{
    dataSet.add("ip", PlixVariant("10.0.0.1"));
    dataSet.add("mask", PlixVariant("255.0.0.0"));
    action.setCommand("set \"%ip\" # %mask");
    EXPECT_EQ(action.refusal(), "%mask in a comment");
    action.setCommand("set \"%ip\" '%mask'");
    EXPECT_EQ(action.refusal(), "");
}

TEST_F(PlixDataSetOnChangeExecuteTest, TriggerFlagsStartAsCommitAndStartUp)
{
    EXPECT_FALSE(action.getTriggerOnlyAtPlixBoot());
    EXPECT_TRUE(action.getTriggerOnPlixStart());
}
