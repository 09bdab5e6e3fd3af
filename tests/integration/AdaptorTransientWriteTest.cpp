#include "PlixOutputLines.h"
#include "PlixServingTest.h"

using AdaptorTransientWrite = PlixServingTest;

TEST_F(AdaptorTransientWrite, TransientSetAppliesAtOnceAndNeverWritesTheStore)
{
    const std::string before = storeText();
    EXPECT_EQ(client().setIntTransient("general/count", 9), 0);
    EXPECT_EQ(client().getIntTransient("general/count").value, 9);
    EXPECT_EQ(storeText(), before);
}

TEST_F(AdaptorTransientWrite, TransientSettersOfEveryTypeApply)
{
    EXPECT_EQ(client().setBoolTransient("general/enabled", false), 0);
    EXPECT_EQ(client().setDoubleTransient("general/ratio", 1.25), 0);
    EXPECT_EQ(client().setStringTransient("general/label", "gamma"), 0);
    EXPECT_FALSE(client().getBoolTransient("general/enabled").value);
    EXPECT_DOUBLE_EQ(client().getDoubleTransient("general/ratio").value, 1.25);
    EXPECT_EQ(client().getStringTransient("general/label").value, "gamma");
}

TEST_F(AdaptorTransientWrite, TransientSetWhileATransactionIsOpenReplies8)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setIntTransient("general/count", 9), 8);
    EXPECT_EQ(newClient().setIntTransient("general/count", 9), 8);
    EXPECT_EQ(client().getIntTransient("general/count").value, 42);
}

TEST_F(AdaptorTransientWrite, TransientSetOfAnUndeclaredIdReplies9)
{
    EXPECT_EQ(client().setIntTransient("general/nothing", 1), 9);
}

TEST_F(AdaptorTransientWrite, TransientSetInAReadOnlyFileReplies15)
{
    EXPECT_EQ(client().setStringTransient("fixed/serial", "SN-9"), 15);
    EXPECT_EQ(client().getStringTransient("fixed/serial").value, "SN-0001");
}

TEST_F(AdaptorTransientWrite, TransientSetOfAnotherTypeReplies200)
{
    EXPECT_EQ(client().setDoubleTransient("general/count", 1.0), 200);
    EXPECT_EQ(client().getIntTransient("general/count").value, 42);
}

TEST_F(AdaptorTransientWrite, TransientSetRunsTheValuesChangeAction)
{
    EXPECT_EQ(client().setStringTransient("general/marker", "x"), 0);
    EXPECT_EQ(fileText("marker.out"), "x");
}

TEST_F(AdaptorTransientWrite, FailingChangeActionReplies10AndRestoresTheValue)
{
    EXPECT_EQ(client().setStringTransient("general/broken", "b1"), 10);
    EXPECT_EQ(client().getStringTransient("general/broken").value, "b0");
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Triggering onChange with Value broken failed."));
}
