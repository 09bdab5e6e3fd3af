#include "PlixDataSet.h"
#include "PlixDataSetOnChangeExecute.h"
#include "PlixDataSetOnChangeSysconfigNetwork.h"
#include "PlixDataSetOnChangeSysconfigNotifyInit.h"
#include "PlixLoadedConfig.h"
#include "PlixValueOnChangeExecute.h"
#include "PlixValueOnChangeSysconfigStationName.h"
#include "PlixValueOnChangeWriteToFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
class PlixOnChangeBuilderTest : public testing::Test
{
protected:
    std::vector<PlixValueOnChangeHandler*> valueActions(const std::string& onChanges)
    {
        config.load("<DataSet ID=\"d\"><Value name=\"v\" type=\"string\" default=\"x\">" +
                    onChanges + "</Value></DataSet>");
        return config.value("d/v").getOnChangeHandlers();
    }

    std::vector<PlixDatasetOnChangeHandler*> dataSetActions(const std::string& onChanges)
    {
        config.load("<DataSet ID=\"d\">" + onChanges +
                    "<Value name=\"v\" type=\"string\" default=\"x\"/></DataSet>");
        return config.dataSet("d").getDatasetOnChangeHandlers();
    }

    template <typename Handler>
    static unsigned run(Handler* action)
    {
        testing::internal::CaptureStdout();
        unsigned status = action->onChange();
        testing::internal::GetCapturedStdout();
        return status;
    }

    std::string touch(const std::string& name) const { return "touch " + config.dir.path(name); }

    PlixLoadedConfig config;
};
} // namespace

TEST_F(PlixOnChangeBuilderTest, ExecuteAtValueLevelRunsItsCommand)
{
    auto actions = valueActions("<onChange type=\"Execute\" command=\"" + touch("ran") + "\"/>");
    ASSERT_EQ(actions.size(), 1u);
    ASSERT_NE(dynamic_cast<PlixValueOnChangeExecute*>(actions[0]), nullptr);
    EXPECT_EQ(run(actions[0]), 0u);
    EXPECT_TRUE(config.dir.exists("ran"));
}

TEST_F(PlixOnChangeBuilderTest, CommandWrittenBeforeTypeIsIgnored)
{
    auto actions = valueActions("<onChange command=\"" + touch("ran") + "\" type=\"Execute\"/>");
    ASSERT_EQ(actions.size(), 1u);
    run(actions[0]);
    EXPECT_FALSE(config.dir.exists("ran"));
}

TEST_F(PlixOnChangeBuilderTest, WriteToFileAtValueLevelWritesIntoItsFilename)
{
    auto actions = valueActions("<onChange type=\"WriteToFile\" filename=\"" +
                                config.dir.path("out") + "\"/>");
    ASSERT_EQ(actions.size(), 1u);
    ASSERT_NE(dynamic_cast<PlixValueOnChangeWriteToFile*>(actions[0]), nullptr);
    EXPECT_EQ(run(actions[0]), 0u);
    EXPECT_TRUE(config.dir.exists("out"));
}

TEST_F(PlixOnChangeBuilderTest, SysconfigStationNameAtValueLevelCreatesItsAction)
{
    auto actions = valueActions("<onChange type=\"SysconfigStationName\"/>");
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_NE(dynamic_cast<PlixValueOnChangeSysconfigStationName*>(actions[0]), nullptr);
}

TEST_F(PlixOnChangeBuilderTest, DataSetKeywordsAtValueLevelAreIgnored)
{
    EXPECT_TRUE(valueActions("<onChange type=\"SysconfigNetwork\"/>"
                             "<onChange type=\"SysconfigNotifyInit\"/><onChange type=\"Beep\"/>")
                    .empty());
    EXPECT_TRUE(config.dataSet("d").getDatasetOnChangeHandlers().empty());
}

TEST_F(PlixOnChangeBuilderTest, ValueActionsKeepTheirDeclarationOrder)
{
    auto actions = valueActions("<onChange type=\"SysconfigStationName\"/>"
                                "<onChange type=\"Execute\" command=\"true\"/>");
    ASSERT_EQ(actions.size(), 2u);
    EXPECT_NE(dynamic_cast<PlixValueOnChangeSysconfigStationName*>(actions[0]), nullptr);
    EXPECT_NE(dynamic_cast<PlixValueOnChangeExecute*>(actions[1]), nullptr);
}

TEST_F(PlixOnChangeBuilderTest, ExecuteAtDataSetLevelRunsItsCommand)
{
    auto actions = dataSetActions("<onChange type=\"Execute\" command=\"" + touch("ran") + "\"/>");
    ASSERT_EQ(actions.size(), 1u);
    ASSERT_NE(dynamic_cast<PlixDataSetOnChangeExecute*>(actions[0]), nullptr);
    EXPECT_EQ(run(actions[0]), 0u);
    EXPECT_TRUE(config.dir.exists("ran"));
    EXPECT_TRUE(config.value("d/v").getOnChangeHandlers().empty());
}

TEST_F(PlixOnChangeBuilderTest, SysconfigNetworkAndNotifyInitAtDataSetLevelCreateTheirActions)
{
    auto actions = dataSetActions("<onChange type=\"SysconfigNetwork\"/>"
                                  "<onChange type=\"SysconfigNotifyInit\"/>");
    ASSERT_EQ(actions.size(), 2u);
    EXPECT_NE(dynamic_cast<PlixDataSetOnChangeSysconfigNetwork*>(actions[0]), nullptr);
    EXPECT_NE(dynamic_cast<PlixDataSetOnChangeSysconfigNotifyInit*>(actions[1]), nullptr);
}

TEST_F(PlixOnChangeBuilderTest, WriteToFileInADataSetBeforeAnyValueCreatesNothing)
{
    EXPECT_TRUE(dataSetActions("<onChange type=\"WriteToFile\" filename=\"" +
                               config.dir.path("out") +
                               "\"/>"
                               "<onChange type=\"SysconfigStationName\"/>")
                    .empty());
    EXPECT_TRUE(config.value("d/v").getOnChangeHandlers().empty());
}

TEST_F(PlixOnChangeBuilderTest, OnChangeBeforeAnyDataSetCreatesNothing)
{
    config.load("<onChange type=\"Execute\" triggerOnlyAtPlixBoot=\"true\"/><DataSet ID=\"d\"/>");
    EXPECT_TRUE(config.dataSet("d").getDatasetOnChangeHandlers().empty());
}

TEST_F(PlixOnChangeBuilderTest, TriggerOnlyAtPlixBootTrueSetsTheFlag)
{
    auto actions = valueActions("<onChange type=\"Execute\" triggerOnlyAtPlixBoot=\"true\"/>");
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_TRUE(actions[0]->getTriggerOnlyAtPlixBoot());
}

TEST_F(PlixOnChangeBuilderTest, TriggerOnlyAtPlixBootOtherThanTrueChangesNothing)
{
    auto actions = dataSetActions("<onChange type=\"Execute\" triggerOnlyAtPlixBoot=\"TRUE\"/>");
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_FALSE(actions[0]->getTriggerOnlyAtPlixBoot());
}

TEST_F(PlixOnChangeBuilderTest, TriggerOnPlixStartFalseClearsTheFlag)
{
    auto actions =
        dataSetActions("<onChange type=\"SysconfigNetwork\" triggerOnPlixStart=\"false\"/>");
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_FALSE(actions[0]->getTriggerOnPlixStart());
}

TEST_F(PlixOnChangeBuilderTest, TriggerOnPlixStartTrueChangesNothing)
{
    auto actions = valueActions("<onChange type=\"Execute\" triggerOnPlixStart=\"true\"/>");
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_TRUE(actions[0]->getTriggerOnPlixStart());
    EXPECT_FALSE(actions[0]->getTriggerOnlyAtPlixBoot());
}

TEST_F(PlixOnChangeBuilderTest, FlagsWrittenBeforeTypeChangeThePreviousAction)
{
    auto actions = valueActions("<onChange type=\"Execute\"/><onChange triggerOnlyAtPlixBoot="
                                "\"true\" triggerOnPlixStart=\"false\" type=\"WriteToFile\"/>");
    ASSERT_EQ(actions.size(), 2u);
    EXPECT_TRUE(actions[0]->getTriggerOnlyAtPlixBoot());
    EXPECT_FALSE(actions[0]->getTriggerOnPlixStart());
    EXPECT_FALSE(actions[1]->getTriggerOnlyAtPlixBoot());
    EXPECT_TRUE(actions[1]->getTriggerOnPlixStart());
}

TEST_F(PlixOnChangeBuilderTest, FlagsWithNoActionOfTheLevelAreIgnored)
{
    auto actions = valueActions("<onChange triggerOnlyAtPlixBoot=\"true\"/>");
    EXPECT_TRUE(actions.empty());
}

TEST_F(PlixOnChangeBuilderTest, ValueCommandWithARefusedPlaceholderIsWarnedAboutAfterParsing)
{
    std::string output = config.loadCapturing(
        "<DataSet ID=\"d\"><Value name=\"v\" type=\"string\">"
        "<onChange type=\"Execute\" command=\"echo \\%v\"/></Value></DataSet>");
    EXPECT_EQ(PlixLoadedConfig::lines(output),
              (std::vector<std::string>{
                  "[NOT] Parsing " + config.dir.path("config.xml"),
                  "[NOT] XML:\tNode: DataSet Name: d", "[NOT] XML:\tNode: Value Name: v",
                  "[NOT] XML:\tExecute action of d/v refuses its values: placeholder %v after a "
                  "backslash in command: echo \\%v",
                  "[NOT] Finished parsing " + config.dir.path("config.xml")}));
}

TEST_F(PlixOnChangeBuilderTest, DataSetCommandIsCheckedWithMembersDeclaredAfterIt)
{
    std::string output =
        config.loadCapturing("<DataSet ID=\"d\"><onChange type=\"Execute\" command=\"true # %v\"/>"
                             "<Value name=\"v\" type=\"string\" default=\"x\"/></DataSet>");
    EXPECT_NE(output.find("[NOT] XML:\tExecute action of d refuses its values: placeholder %v in "
                          "a comment in command: true # %v\n"),
              std::string::npos)
        << output;
}

TEST_F(PlixOnChangeBuilderTest, CommandsWithQuotedOrUnquotedPlaceholdersAreNotWarnedAbout)
{
    std::string output = config.loadCapturing(
        "<DataSet ID=\"d\"><onChange type=\"Execute\" command=\"echo %v &quot;%v&quot; '%v'\"/>"
        "<Value name=\"v\" type=\"string\" default=\"x\">"
        "<onChange type=\"Execute\" command=\"echo &quot;$(echo %v)&quot; \\%w\"/>"
        "</Value></DataSet>");
    EXPECT_EQ(output.find("Execute action"), std::string::npos) << output;
}
