#include "PlixOutputLines.h"
#include "PlixServingTest.h"

namespace {
const char* const kClearLine = "[NOT] Clearing PLIX to be ready for new transactions";
}

using AdaptorWrite = PlixServingTest;

TEST_F(AdaptorWrite, SetWithoutTransactionReplies4)
{
    EXPECT_EQ(client().setInt("general/count", 5), 4);
    syncOutput();
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] PLIX is busy"));
}

TEST_F(AdaptorWrite, SetOfAnUndeclaredIdReplies9AndEndsTheTransaction)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setInt("general/nothing", 5), 9);
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_TRUE(plixLinesAdjacent(
        lines(), {kClearLine, "[NOT] general/nothing is not declared in the xml"}));
}

TEST_F(AdaptorWrite, SetInAReadOnlyFileReplies15AndEndsTheTransaction)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setString("fixed/serial", "SN-9"), 15);
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_TRUE(plixLinesAdjacent(
        lines(), {"[NOT] client tried to change read_only file fixed", kClearLine}));
    EXPECT_EQ(client().getStringTransient("fixed/serial").value, "SN-0001");
}

TEST_F(AdaptorWrite, SetOfAnotherTypeReplies200AndEndsTheTransaction)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setString("general/count", "7"), 200);
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_TRUE(plixLinesAdjacent(lines(), {kClearLine, "[NOT] SetValue failed"}));
}

TEST_F(AdaptorWrite, ValueOutsideTheValidatorsRangeReplies200)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setInt("general/count", 5000), 200);
    EXPECT_TRUE(
        plixHasLine(lines(), "[NOT] Validation failed: value for count not beetween 0 and 1000!"));
    EXPECT_EQ(client().transactionStop(), 4);
}

TEST_F(AdaptorWrite, TextOutsideTheLengthBoundsReplies205)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setString("general/label", "far-too-long"), 205);
    EXPECT_EQ(client().transactionStop(), 4);
}

TEST_F(AdaptorWrite, SecondSetOfTheSameIdReplies1AndTheLastValueWins)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setInt("general/count", 5), 0);
    EXPECT_EQ(client().setInt("general/count", 6), 1);
    EXPECT_EQ(client().transactionStop(), 0);
    EXPECT_EQ(client().getIntTransient("general/count").value, 6);
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] SetValue with same XML-ID was already called this "
                                     "transaction. Taking last parameters and erasing the ones "
                                     "before"));
}

TEST_F(AdaptorWrite, PersistentCommitAppliesEveryTypeAndRewritesTheStore)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setInt("general/count", 7), 0);
    EXPECT_EQ(client().setDouble("general/ratio", 0.5), 0);
    EXPECT_EQ(client().setString("general/label", "beta"), 0);
    EXPECT_EQ(client().setBool("general/enabled", false), 0);
    EXPECT_EQ(client().transactionStop(), 0);

    EXPECT_EQ(client().getIntTransient("general/count").value, 7);
    EXPECT_DOUBLE_EQ(client().getDoubleTransient("general/ratio").value, 0.5);
    EXPECT_EQ(client().getStringTransient("general/label").value, "beta");
    EXPECT_FALSE(client().getBoolTransient("general/enabled").value);
    const auto general = storeJson()["general"];
    EXPECT_EQ(general["count"], 7);
    EXPECT_EQ(general["ratio"], 0.5);
    EXPECT_EQ(general["label"], "beta");
    EXPECT_EQ(general["enabled"], false);
    EXPECT_EQ(storeJson()["ports"]["mainport"], 5900);
}

TEST_F(AdaptorWrite, NonPersistentCommitLeavesTheStoreAlone)
{
    const std::string before = storeText();
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().setInt("general/count", 8), 0);
    EXPECT_EQ(client().transactionStop(), 0);
    EXPECT_EQ(client().getIntTransient("general/count").value, 8);
    EXPECT_EQ(storeText(), before);
}

TEST_F(AdaptorWrite, PortClashReplies203AndRollsBack)
{
    const std::string before = storeText();
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setInt("ports/mainport", 80), 0);
    EXPECT_EQ(client().transactionStop(), 203);
    EXPECT_EQ(client().getIntTransient("ports/mainport").value, 5900);
    EXPECT_EQ(storeText(), before);
    EXPECT_TRUE(plixLinesAdjacent(lines(), {"[NOT] Validating DataSet ports failed.", kClearLine}));
}

TEST_F(AdaptorWrite, FailingChangeActionReplies10AndRollsBack)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().setString("general/broken", "b1"), 0);
    EXPECT_EQ(client().transactionStop(), 10);
    EXPECT_EQ(client().getStringTransient("general/broken").value, "b0");
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Triggering onChange with Value broken failed."));
}

TEST_F(AdaptorWrite, CommitRunsTheValuesChangeAction)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().setString("general/marker", "m1"), 0);
    EXPECT_EQ(client().transactionStop(), 0);
    EXPECT_EQ(fileText("marker.out"), "m1");
}

TEST_F(AdaptorWrite, StopWithoutTransactionReplies4)
{
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Client is not registered."));
}

TEST_F(AdaptorWrite, StopOfAnEmptyTransactionReplies0)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().transactionStop(), 0);
    EXPECT_EQ(client().transactionStart(true), 0);
}
