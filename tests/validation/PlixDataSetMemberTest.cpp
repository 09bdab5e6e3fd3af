#include "PlixDataSetMember.h"
#include "PlixTestDataSet.h"

TEST(PlixDataSetMember, ReadGivesTheMembersCurrentContent)
{
    PlixTestDataSet dataSet;
    dataSet.add("mainport", PlixVariant(102));
    const PlixVariant content =
        PlixDataSetMember::readOrExit(dataSet.get(), "mainport", "unused %s");
    EXPECT_EQ(content.getDataType(), PlixVariant::INT);
    EXPECT_EQ(content.asInt(), 102);
}

TEST(PlixDataSetMemberDeathTest, MissingMemberLogsTheGivenLineAndEndsWith16)
{
    PlixTestDataSet dataSet;
    dataSet.add("mainport", PlixVariant(102));
    EXPECT_EXIT(
        (sendStdoutToStderr(),
         PlixDataSetMember::readOrExit(dataSet.get(), "httpport", "Reading httpport failed: %s")),
        testing::ExitedWithCode(16), testing::Eq("[ERR] Reading httpport failed: map::at\n"));
}
