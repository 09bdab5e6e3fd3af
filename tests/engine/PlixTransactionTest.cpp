#include "PlixEngineFixture.h"

using ::testing::ElementsAre;

namespace {

class PlixTransactionTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
    }
};

} // namespace

TEST_F(PlixTransactionTest, StartOnIdleEngineRegistersClient)
{
    int result = -1;
    const auto lines = outputOf([&] { result = engine->transactionStart("client-a", true); });
    EXPECT_EQ(result, 0);
    EXPECT_THAT(lines, ElementsAre("[NOT] transactionStart client: client-a persistent: true",
                                   "[NFO] Service registered!"));
}

TEST_F(PlixTransactionTest, StartLogsPersistentFalse)
{
    const auto lines = outputOf([&] { engine->transactionStart(":1.42", false); });
    EXPECT_EQ(lines.front(), "[NOT] transactionStart client: :1.42 persistent: false");
}

TEST_F(PlixTransactionTest, SecondStartBySameClientIsRefusedAndFirstStaysOpen)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    int result = -1;
    const auto lines = outputOf([&] { result = engine->transactionStart("client-a", true); });
    EXPECT_EQ(result, 8);
    EXPECT_THAT(lines, ElementsAre("[NOT] transactionStart client: client-a persistent: true",
                                   "[NOT] Plix is currently busy with another transaction!"));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixTransactionTest, StartByOtherClientWhileOpenReturnsBusy)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    EXPECT_EQ(engine->transactionStart("client-b", true), 8);
    EXPECT_EQ(engine->transactionStop("client-b"), 4);
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixTransactionTest, ClearStepLogsAndReturnsEngineToIdle)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    const auto lines = outputOf([&] { engine->clear_plix(); });
    EXPECT_THAT(lines, ElementsAre("[NOT] Clearing PLIX to be ready for new transactions"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
    EXPECT_EQ(engine->transactionStart("client-b", true), 0);
    EXPECT_EQ(engine->transactionStop("client-b"), 0);
    EXPECT_TRUE(actionLog().empty());
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("x", "a/i", value), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(PlixTransactionTest, ClearResetsVerifyMarksOfDataSets)
{
    ASSERT_EQ(engine->setDoubleValueTransient("client-a", "a/d", 3.5), 0);
    engine->clear_plix();
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "ports/httpport", 8080), 0);
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    EXPECT_THAT(actionLog(), ElementsAre("dataset-ports"));
}

TEST_F(PlixTransactionTest, ClientThatWaitsFiveSecondsLosesTransaction)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    const auto waited = outputOf([] { runMainLoopFor(5500); });
    EXPECT_THAT(waited, ElementsAre("[NOT] Client timeout!",
                                    "[NOT] Clearing PLIX to be ready for new transactions"));
    int result = -1;
    const auto lines = outputOf([&] { result = engine->transactionStop("client-a"); });
    EXPECT_EQ(result, 4);
    EXPECT_THAT(lines, ElementsAre("[NOT] transactionStop client: client-a ",
                                   "[NOT] Client is not registered."));
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("x", "a/i", value), 0);
    EXPECT_EQ(value, 5);
}

// Two calls 2.5 s apart: each comes 1.5 s before the deadline that the one
// before it set, and the end is 2 s past the deadline of the start.
TEST_F(PlixTransactionTest, CallWithinFourSecondsKeepsTransaction)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    runMainLoopFor(2500);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    runMainLoopFor(2500);
    int value = 0;
    ASSERT_EQ(engine->getIntValue("client-a", "a/i", value), 0);
    const auto waited = outputOf([] { runMainLoopFor(1000); });
    EXPECT_TRUE(waited.empty());
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixTransactionTest, TimeoutAfterNonPersistentStartLetsNextClientStart)
{
    ASSERT_EQ(engine->transactionStart("client-a", false), 0);
    runMainLoopFor(5500);
    EXPECT_EQ(engine->transactionStart("client-b", true), 0);
    ASSERT_EQ(engine->setIntValue("client-b", "a/i", 9), 0);
    ASSERT_EQ(engine->transactionStop("client-b"), 0);
    EXPECT_EQ(readJson("main.json")["a"]["i"], 9);
}

TEST_F(PlixTransactionTest, StopCancelsTimeout)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    ASSERT_EQ(engine->transactionStart("client-b", true), 0);
    runMainLoopFor(2500);
    ASSERT_EQ(engine->setIntValue("client-b", "a/i", 9), 0);
    const auto waited = outputOf([] { runMainLoopFor(2500); });
    EXPECT_TRUE(waited.empty());
    EXPECT_EQ(engine->transactionStop("client-b"), 0);
}

TEST_F(PlixTransactionTest, AlarmThatFiredBeforeReArmIsIgnored)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    Plix::client_timeout_proxy(SIGALRM);
    const auto waited = outputOf([] { runMainLoopFor(200); });
    EXPECT_TRUE(waited.empty());
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixTransactionTest, ClientTimeoutMemberLogsAndClears)
{
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    const auto lines = outputOf([&] { engine->client_timeout(SIGALRM); });
    EXPECT_THAT(lines, ElementsAre("[NOT] Client timeout!",
                                   "[NOT] Clearing PLIX to be ready for new transactions"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}
