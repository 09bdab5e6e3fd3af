#include "PlixConfirmation.h"
#include "PlixEngineFixture.h"

namespace {
const char* const client = ":1.7";

// The confirmation on its own, with a put-back that counts its calls and
// answers as told.
class PlixConfirmationTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        confirmation.setStore(path("main.json"));
    }

    std::string openWindow(unsigned seconds)
    {
        std::string error;
        EXPECT_TRUE(confirmation.prepare({{"a/i", PlixVariant(5)}}, seconds, error)) << error;
        return confirmation.open();
    }

    int putBacks = 0;
    int putBackAnswer = 0;
    std::vector<PlixRollbackEntry> putBackContents;
    PlixConfirmation confirmation{[this](const std::vector<PlixRollbackEntry>& contents) {
        ++putBacks;
        putBackContents = contents;
        return putBackAnswer;
    }};
};

// The engine with a change of a/i from 5 to 50 that awaits its confirmation.
class PlixConfirmedCommitTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
    }

    int commitConfirmed(const std::string& id, int value)
    {
        EXPECT_EQ(engine->transactionStart(client, true), 0);
        EXPECT_EQ(engine->setIntValue(client, id, value), 0);
        return engine->transactionStopConfirmed(client, 60, unstored, token);
    }

    int storedI() const { return readJson("main.json")["a"]["i"].get<int>(); }

    std::string unstored;
    std::string token;
};
} // namespace

TEST_F(PlixConfirmationTest, OpenAnswersA128BitHexTokenAndWritesTheFile)
{
    const std::string token = openWindow(60);
    EXPECT_EQ(token.size(), 32u);
    EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_TRUE(confirmation.pending());
    EXPECT_EQ(confirmation.ids(), std::vector<std::string>{"a/i"});
    EXPECT_GE(confirmation.secondsLeft(), 59u);
    EXPECT_LE(confirmation.secondsLeft(), 60u);
    EXPECT_TRUE(exists("plix-rollback.json"));
    EXPECT_NE(openWindow(60), token);
}

TEST_F(PlixConfirmationTest, ConfirmKeepsTheChangeAndRemovesTheFile)
{
    const std::string token = openWindow(60);
    EXPECT_EQ(confirmation.confirm(token + "0"), 4);
    EXPECT_EQ(confirmation.confirm(""), 4);
    EXPECT_TRUE(confirmation.pending());
    EXPECT_EQ(confirmation.confirm(token), 0);
    EXPECT_FALSE(confirmation.pending());
    EXPECT_EQ(confirmation.secondsLeft(), 0u);
    EXPECT_FALSE(exists("plix-rollback.json"));
    EXPECT_EQ(putBacks, 0);
    EXPECT_EQ(confirmation.confirm(token), 4);
}

TEST_F(PlixConfirmationTest, CancelPutsTheOldContentsBackAtOnce)
{
    const std::string token = openWindow(60);
    EXPECT_EQ(confirmation.cancel(token), 0);
    EXPECT_EQ(putBacks, 1);
    ASSERT_EQ(putBackContents.size(), 1u);
    EXPECT_EQ(putBackContents[0].xmlId, "a/i");
    EXPECT_EQ(putBackContents[0].content.asInt(), 5);
    EXPECT_FALSE(confirmation.pending());
    EXPECT_FALSE(exists("plix-rollback.json"));
}

TEST_F(PlixConfirmationTest, TheEndOfTheWindowPutsTheOldContentsBack)
{
    openWindow(0);
    EXPECT_TRUE(runMainLoopUntil([this] { return putBacks == 1; }, 5000));
    EXPECT_FALSE(confirmation.pending());
    EXPECT_FALSE(exists("plix-rollback.json"));
}

TEST_F(PlixConfirmationTest, AFailedPutBackStaysPendingUntilItSucceedsOrIsConfirmed)
{
    putBackAnswer = 13;
    const std::string token = openWindow(60);
    EXPECT_EQ(confirmation.cancel(token), 13);
    EXPECT_TRUE(confirmation.pending());
    EXPECT_EQ(confirmation.secondsLeft(), 0u);
    EXPECT_TRUE(exists("plix-rollback.json"));
    EXPECT_EQ(confirmation.confirm(token), 0);
    EXPECT_FALSE(confirmation.pending());
    EXPECT_FALSE(exists("plix-rollback.json"));
}

TEST_F(PlixConfirmationTest, AbandonForgetsThePreparedContents)
{
    std::string error;
    ASSERT_TRUE(confirmation.prepare({{"a/i", PlixVariant(5)}}, 60, error));
    EXPECT_FALSE(confirmation.pending());
    confirmation.abandon();
    EXPECT_FALSE(exists("plix-rollback.json"));
    EXPECT_EQ(putBacks, 0);
}

TEST_F(PlixConfirmedCommitTest, TheChangeIsStoredAndEveryTransactionIsBusyUntilConfirmed)
{
    ASSERT_EQ(commitConfirmed("a/i", 50), 0);
    EXPECT_EQ(unstored, "");
    EXPECT_EQ(storedI(), 50);
    EXPECT_EQ(readJson("plix-rollback.json")["values"][0]["value"], 5);
    EXPECT_EQ(engine->transactionStart(":1.8", false), 8);
    EXPECT_EQ(engine->setIntValueTransient(":1.8", "a/n", 3), 0);
    EXPECT_EQ(engine->confirmation().confirm(token), 0);
    EXPECT_EQ(storedI(), 50);
    EXPECT_EQ(engine->transactionStart(":1.8", false), 0);
}

TEST_F(PlixConfirmedCommitTest, CancelStoresTheOldValueAndRunsItsActions)
{
    ASSERT_EQ(commitConfirmed("a/i", 50), 0);
    EXPECT_EQ(engine->confirmation().cancel(token), 0);
    EXPECT_EQ(storedI(), 5);
    int now = 0;
    EXPECT_EQ(engine->getIntValueTransient(client, "a/i", now), 0);
    EXPECT_EQ(now, 5);
    EXPECT_THAT(actionLog(),
                ::testing::ElementsAre("value-i 50", "dataset-a", "value-i 5", "dataset-a"));
    EXPECT_FALSE(exists("plix-rollback.json"));
}

TEST_F(PlixConfirmedCommitTest, APasswordGoesBackInItsStoredFormNeverHashedAgain)
{
    const std::string stored = readJson("main.json")["a"]["pw"];
    ASSERT_EQ(engine->transactionStart(client, true), 0);
    ASSERT_EQ(engine->setStringValue(client, "a/pw", "other"), 0);
    ASSERT_EQ(engine->transactionStopConfirmed(client, 60, unstored, token), 0);
    EXPECT_NE(readJson("main.json")["a"]["pw"], stored);
    EXPECT_EQ(engine->confirmation().cancel(token), 0);
    EXPECT_EQ(readJson("main.json")["a"]["pw"], stored);
}

TEST_F(PlixConfirmedCommitTest, AFailedCommitLeavesNothingPendingAndNoFile)
{
    writeFile("fail-value-i", "");
    EXPECT_EQ(commitConfirmed("a/i", 50), 13);
    EXPECT_EQ(token, "");
    EXPECT_FALSE(engine->confirmation().pending());
    EXPECT_FALSE(exists("plix-rollback.json"));
    EXPECT_EQ(storedI(), 5);
}

TEST_F(PlixConfirmedCommitTest, AStartWithARollbackFilePutsItsValuesBackAndRemovesIt)
{
    writeFile("plix-rollback.json",
              R"({"deadline": 1, "values": [{"id": "a/i", "type": 2, "value": 9}]})");
    configureTestEngine();
    int now = 0;
    EXPECT_EQ(engine->getIntValueTransient(client, "a/i", now), 0);
    EXPECT_EQ(now, 9);
    EXPECT_EQ(storedI(), 9);
    EXPECT_FALSE(exists("plix-rollback.json"));
    EXPECT_FALSE(engine->confirmation().pending());
}
