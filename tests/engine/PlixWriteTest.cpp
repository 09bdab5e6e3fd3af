#include "PlixEngineFixture.h"

using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

const char* const clearLine = "[NOT] Clearing PLIX to be ready for new transactions";

class PlixWriteTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
    }

    void start() { ASSERT_EQ(engine->transactionStart("client-a", true), 0); }

    int storedInt(const std::string& xml_id)
    {
        int value = -1;
        EXPECT_EQ(engine->getIntValueTransient("test", xml_id, value), 0);
        return value;
    }
};

} // namespace

TEST_F(PlixWriteTest, SetOfEveryTypeLogsValueAndReturns0)
{
    start();
    int results[4] = {-1, -1, -1, -1};
    const auto lines = outputOf([&] {
        results[0] = engine->setBoolValue("client-a", "a/b", false);
        results[1] = engine->setIntValue("client-a", "a/i", 42);
        results[2] = engine->setDoubleValue("client-a", "a/d", 0.5);
        results[3] = engine->setStringValue("client-a", "a/s", "world");
    });
    EXPECT_THAT(results, ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(lines, ElementsAre("[NOT] setValue client: client-a xml_id: a/b value: false",
                                   "[NOT] setValue client: client-a xml_id: a/i value: 42",
                                   "[NOT] setValue client: client-a xml_id: a/d value: 0.5",
                                   "[NOT] setValue client: client-a xml_id: a/s value: world"));
}

TEST_F(PlixWriteTest, ThirdSetOfSameIdReturns1AndListIsBThenA)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 10), 0);
    ASSERT_EQ(engine->setStringValue("client-a", "a/s", "x"), 0);
    int result = -1;
    const auto lines = outputOf([&] { result = engine->setIntValue("client-a", "a/i", 11); });
    EXPECT_EQ(result, 1);
    EXPECT_THAT(
        lines,
        ElementsAre("[NOT] setValue client: client-a xml_id: a/i value: 11",
                    "[NOT] SetValue with same XML-ID was already called this transaction. Taking "
                    "last parameters and erasing the ones before"));
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-s x", "value-i 11", "dataset-a"));
}

TEST_F(PlixWriteTest, EachFurtherSetOfTheSameIdReturns1AndTheLastIsApplied)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 10), 0);
    EXPECT_EQ(engine->setIntValue("client-a", "a/i", 11), 1);
    EXPECT_EQ(engine->setIntValue("client-a", "a/i", 12), 1);
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 12", "dataset-a"));
}

// What a committed or abandoned transaction set is forgotten with it.
TEST_F(PlixWriteTest, ASetIsNoRepeatOfASetInAnEarlierTransaction)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 10), 0);
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 11), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/s", 7), 200);
    start();
    EXPECT_EQ(engine->setIntValue("client-a", "a/i", 12), 0);
    EXPECT_EQ(engine->setIntValue("client-a", "a/i", 13), 1);
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    EXPECT_EQ(storedInt("a/i"), 13);
}

TEST_F(PlixWriteTest, SetByNonHolderReturns4AndKeepsTransaction)
{
    start();
    int result = -1;
    const auto lines = outputOf([&] { result = engine->setIntValue("client-b", "a/i", 9); });
    EXPECT_EQ(result, 4);
    EXPECT_THAT(lines, ElementsAre("[NOT] PLIX is busy"));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixWriteTest, SetWithoutTransactionReturns4)
{
    const auto lines = outputOf([&] { EXPECT_EQ(engine->setIntValue("client-a", "a/i", 9), 4); });
    EXPECT_THAT(lines, ElementsAre("[NOT] PLIX is busy"));
}

TEST_F(PlixWriteTest, SetOfUndeclaredIdReturns9AfterClear)
{
    start();
    int result = -1;
    const auto lines = outputOf([&] { result = engine->setIntValue("client-a", "a/zz", 9); });
    EXPECT_EQ(result, 9);
    EXPECT_THAT(lines, ElementsAre(clearLine, "[NOT] a/zz is not declared in the xml"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

TEST_F(PlixWriteTest, SetStringOnReadOnlyFileReturns15AndEndsTransaction)
{
    start();
    int result = -1;
    const auto lines =
        outputOf([&] { result = engine->setStringValue("client-a", "fixed/serial", "SN-2"); });
    EXPECT_EQ(result, 15);
    EXPECT_THAT(lines, ElementsAre("[NOT] client tried to change read_only file fixed", clearLine));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

TEST_F(PlixWriteTest, SetOfWrongTypeReturns200AndEndsTransaction)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/n", 3), 0);
    int result = -1;
    const auto lines = outputOf([&] { result = engine->setStringValue("client-a", "a/i", "7"); });
    EXPECT_EQ(result, 200);
    EXPECT_THAT(lines, ElementsAre("[NOT] setValue client: client-a xml_id: a/i value: 7",
                                   "[NOT] Datatype doesnt match the one from i", clearLine,
                                   "[NOT] SetValue failed"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
    EXPECT_EQ(storedInt("a/n"), 1);
}

TEST_F(PlixWriteTest, SetRejectedByValueValidatorReturnsItsCodeAndEndsTransaction)
{
    start();
    int result = -1;
    const auto lines = outputOf([&] { result = engine->setIntValue("client-a", "a/i", 101); });
    EXPECT_EQ(result, 200);
    EXPECT_THAT(lines, ElementsAre("[NOT] setValue client: client-a xml_id: a/i value: 101",
                                   "[NOT] Validation failed: value for i not beetween 0 and 100!",
                                   clearLine, "[NOT] SetValue failed"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

TEST_F(PlixWriteTest, PasswordSetLogsNothingOfTheValue)
{
    start();
    const auto lines =
        outputOf([&] { EXPECT_EQ(engine->setStringValue("client-a", "a/pw", "newsecret"), 0); });
    EXPECT_TRUE(lines.empty());
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    EXPECT_EQ(engine->verify("client-a", "a/pw", std::string("newsecret")), 0);
    EXPECT_EQ(engine->verify("client-a", "a/pw", std::string("secret")), 201);
}

TEST_F(PlixWriteTest, TransientSetWhileAnyClientHoldsTransactionReturns8)
{
    start();
    int own = -1;
    int other = -1;
    const auto lines = outputOf([&] {
        own = engine->setIntValueTransient("client-a", "a/i", 9);
        other = engine->setIntValueTransient("client-b", "a/i", 9);
    });
    EXPECT_EQ(own, 8);
    EXPECT_EQ(other, 8);
    EXPECT_THAT(lines, ElementsAre("[NOT] PLIX is busy", "[NOT] PLIX is busy"));
    EXPECT_EQ(storedInt("a/i"), 5);
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixWriteTest, TransientSetAppliesAtOnceRunsActionsAndNeverWritesStore)
{
    const std::string before = readFile("main.json");
    int result = -1;
    const auto lines =
        outputOf([&] { result = engine->setIntValueTransient("client-a", "a/i", 12); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(lines.front(), "[NOT] setValueTransient client: client-a xml_id: a/i value: 12");
    EXPECT_EQ(storedInt("a/i"), 12);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 12"));
    EXPECT_EQ(readFile("main.json"), before);
}

TEST_F(PlixWriteTest, TransientSetOfEveryTypeReturns0)
{
    EXPECT_EQ(engine->setBoolValueTransient("c", "a/b", false), 0);
    EXPECT_EQ(engine->setDoubleValueTransient("c", "a/d", 4.25), 0);
    EXPECT_EQ(engine->setStringValueTransient("c", "a/s", "t"), 0);
    bool b = true;
    double d = 0.0;
    std::string s;
    EXPECT_EQ(engine->getBoolValueTransient("c", "a/b", b), 0);
    EXPECT_EQ(engine->getDoubleValueTransient("c", "a/d", d), 0);
    EXPECT_EQ(engine->getStringValueTransient("c", "a/s", s), 0);
    EXPECT_FALSE(b);
    EXPECT_DOUBLE_EQ(d, 4.25);
    EXPECT_EQ(s, "t");
}

TEST_F(PlixWriteTest, TransientSetOfUndeclaredIdReturns9)
{
    const auto lines = outputOf([&] { EXPECT_EQ(engine->setIntValueTransient("c", "q", 1), 9); });
    EXPECT_THAT(lines, ElementsAre("[NOT] q is not declared in the xml"));
}

TEST_F(PlixWriteTest, TransientSetOnReadOnlyFileReturns15)
{
    const auto lines =
        outputOf([&] { EXPECT_EQ(engine->setStringValueTransient("c", "fixed/serial", "x"), 15); });
    EXPECT_THAT(lines, ElementsAre("[NOT] client tried to change read_only file fixed"));
}

TEST_F(PlixWriteTest, TransientSetOfWrongTypeReturns200AndChangesNothing)
{
    const auto lines =
        outputOf([&] { EXPECT_EQ(engine->setDoubleValueTransient("c", "a/i", 1.0), 200); });
    EXPECT_THAT(lines, ElementsAre("[NOT] setValueTransient client: c xml_id: a/i value: 1",
                                   "[NOT] Datatype doesnt match the one from i"));
    EXPECT_EQ(storedInt("a/i"), 5);
    EXPECT_TRUE(actionLog().empty());
}

TEST_F(PlixWriteTest, TransientSetWithFailingActionPutsValueBack)
{
    writeFile("fail-value-i", "");
    int result = -1;
    const auto lines = outputOf([&] { result = engine->setIntValueTransient("c", "a/i", 30); });
    EXPECT_EQ(result, 13);
    EXPECT_EQ(lines.back(), "[NOT] Triggering onChange with Value i failed.");
    EXPECT_EQ(storedInt("a/i"), 5);
}

TEST_F(PlixWriteTest, TransientSetSkipsBootOnlyAction)
{
    ASSERT_EQ(engine->setIntValueTransient("c", "a/i", 31), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 31"));
}

TEST_F(PlixWriteTest, TransientSetMarkMakesNextCommitRunThatDataSetsActions)
{
    ASSERT_EQ(engine->setDoubleValueTransient("c", "a/d", 3.5), 0);
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "ports/httpport", 8080), 0);
    ASSERT_EQ(engine->transactionStop("client-a"), 0);
    EXPECT_THAT(actionLog(), ElementsAre("dataset-a", "dataset-ports"));
}

TEST_F(PlixWriteTest, TransientPasswordSetHashesWithTypeAfterFirstComma)
{
    // "sha256,2" names the digest "2", which no library knows: the stored
    // digest text is empty, and such a password accepts no candidate.
    ASSERT_EQ(engine->setStringValueTransient("c", "a/pw", "typed"), 0);
    start();
    EXPECT_EQ(engine->verify("client-a", "a/pw", std::string("typed")), 201);
    EXPECT_EQ(engine->verify("client-a", "a/pw", std::string("anything")), 201);
}

TEST_F(PlixWriteTest, VerifyRightPasswordReturns0WrongReturns201AndTransactionStays)
{
    start();
    int right = -1;
    int wrong = -1;
    const auto lines = outputOf([&] {
        right = engine->verify("client-a", "a/pw", std::string(storedPasswordPlainText));
        wrong = engine->verify("client-a", "a/pw", std::string("guess"));
    });
    EXPECT_EQ(right, 0);
    EXPECT_EQ(wrong, 201);
    EXPECT_THAT(lines,
                ElementsAre("[NOT] Verify client: client-a xml_id: a/pw valuetype: password",
                            "[NOT] Verify client: client-a xml_id: a/pw valuetype: password"));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixWriteTest, VerifyOfNonPasswordLogsValuelessLineAndStdoutOnlyLine)
{
    start();
    int result = -1;
    const auto lines = outputOf([&] { result = engine->verify("client-a", "a/i", 5); });
    EXPECT_EQ(result, 0);
    EXPECT_THAT(lines,
                ElementsAre("[NOT] Verify client: client-a xml_id: a/i value: ",
                            "[NOT] Verify client: client-a xml_id: a/i valuetype: password"));
}

TEST_F(PlixWriteTest, VerifyOfEachTypeComparesWithStoredValue)
{
    start();
    EXPECT_EQ(engine->verify("client-a", "a/i", 5), 0);
    EXPECT_EQ(engine->verify("client-a", "a/i", 6), 201);
    EXPECT_EQ(engine->verify("client-a", "a/d", 2.5005), 0);
    EXPECT_EQ(engine->verify("client-a", "a/d", 2.6), 201);
    EXPECT_EQ(engine->verify("client-a", "a/s", std::string("hello")), 0);
    EXPECT_EQ(engine->verify("client-a", "a/s", std::string("Hello")), 201);
    EXPECT_EQ(engine->verify("client-a", "a/b", true), 0);
    EXPECT_EQ(engine->verify("client-a", "a/b", false), 201);
}

TEST_F(PlixWriteTest, VerifyOfBoolWithIntReturns201WhateverTheNumber)
{
    start();
    EXPECT_EQ(engine->verify("client-a", "a/b", 1), 201);
    EXPECT_EQ(engine->verify("client-a", "a/b", 0), 201);
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixWriteTest, VerifyWithoutTransactionReturns4)
{
    const auto lines = outputOf([&] { EXPECT_EQ(engine->verify("client-a", "a/i", 5), 4); });
    EXPECT_THAT(lines, ElementsAre("[NOT] No transaction with plix active"));
}

TEST_F(PlixWriteTest, VerifyByNonHolderReturns8AndKeepsTransaction)
{
    start();
    const auto lines = outputOf([&] { EXPECT_EQ(engine->verify("client-b", "a/i", 5), 8); });
    EXPECT_THAT(
        lines,
        ElementsAre("[NOT] Plix is currently busy with another transaction with client client-a"));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixWriteTest, VerifyOfUndeclaredIdReturns9AfterClear)
{
    start();
    const auto lines = outputOf([&] { EXPECT_EQ(engine->verify("client-a", "a/none", true), 9); });
    EXPECT_THAT(lines, ElementsAre(clearLine, "[NOT] a/none is not declared in the xml"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

TEST_F(PlixWriteTest, VerifyAgainstCorruptStoredPasswordReturns201AndLogsError)
{
    engine.reset();
    writeFile("main.json",
              R"({"a": {"i": 5, "d": 2.5, "s": "hello", "b": true, "pw": "abc", "n": 1},
        "ports": {"mainport": 102, "displayport": 103, "httpport": 80},
        "prio": {"disconnectexistconnections": false, "sharedsessions": true, "refuseconcurrentconnections": false}})");
    configureWith({"-c", path("plix.xml")});
    start();
    int result = -1;
    const auto lines =
        outputOf([&] { result = engine->verify("client-a", "a/pw", std::string("secret")); });
    EXPECT_EQ(result, 201);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_THAT(lines[1], StartsWith("[ERR] Stored password of a/pw is corrupt: "));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}
