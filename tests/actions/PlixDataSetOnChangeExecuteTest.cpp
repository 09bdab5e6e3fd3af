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

TEST_F(PlixDataSetOnChangeExecuteTest, HostileValuesCannotRunCommands)
{
    const std::string canary = directory.file("canary");
    PlixValue& v = dataSet.add("v", PlixVariant(""));
    for (const std::string& hostile : hostileValues(canary)) {
        v.setValue(PlixVariant(hostile));
        EXPECT_EQ(run("printf '%s' %v > " + directory.file("out")), 0u) << hostile;
        EXPECT_EQ(directory.read("out"), hostile);
        EXPECT_FALSE(directory.exists("canary")) << hostile;
    }
}

TEST_F(PlixDataSetOnChangeExecuteTest, TriggerFlagsStartAsCommitAndStartUp)
{
    EXPECT_FALSE(action.getTriggerOnlyAtPlixBoot());
    EXPECT_TRUE(action.getTriggerOnPlixStart());
}
