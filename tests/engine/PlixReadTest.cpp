#include "PlixEngineFixture.h"

using ::testing::ElementsAre;

namespace {

class PlixReadTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
    }

    void start() { ASSERT_EQ(engine->transactionStart("client-a", true), 0); }
};

} // namespace

TEST_F(PlixReadTest, HolderReadsEveryTypeWithItsLogLines)
{
    start();
    bool b = false;
    int i = 0;
    double d = 0.0;
    std::string s;
    int results[4] = {-1, -1, -1, -1};
    const auto lines = outputOf([&] {
        results[0] = engine->getBoolValue("client-a", "a/b", b);
        results[1] = engine->getIntValue("client-a", "a/i", i);
        results[2] = engine->getDoubleValue("client-a", "a/d", d);
        results[3] = engine->getStringValue("client-a", "a/s", s);
    });
    EXPECT_THAT(results, ElementsAre(0, 0, 0, 0));
    EXPECT_TRUE(b);
    EXPECT_EQ(i, 5);
    EXPECT_DOUBLE_EQ(d, 2.5);
    EXPECT_EQ(s, "hello");
    EXPECT_THAT(
        lines,
        ElementsAre(
            "[NOT] getBoolValue client: client-a xml_id: a/b", "Read value: true with type 0",
            "[NOT] getIntValue client: client-a xml_id: a/i", "Read value: 5 with type 2",
            "[NOT] getDoubleValue client: client-a xml_id: a/d", "Read value: 2.5 with type 3",
            "[NOT] getStringValue client: client-a xml_id: a/s", "Read value: hello with type 1"));
}

TEST_F(PlixReadTest, TransientReadsEveryTypeWithoutTransaction)
{
    bool b = false;
    int i = 0;
    double d = 0.0;
    std::string s;
    int results[4] = {-1, -1, -1, -1};
    const auto lines = outputOf([&] {
        results[0] = engine->getBoolValueTransient("client-a", "a/b", b);
        results[1] = engine->getIntValueTransient("client-a", "a/i", i);
        results[2] = engine->getDoubleValueTransient("client-a", "a/d", d);
        results[3] = engine->getStringValueTransient("client-a", "a/s", s);
    });
    EXPECT_THAT(results, ElementsAre(0, 0, 0, 0));
    EXPECT_TRUE(b);
    EXPECT_EQ(i, 5);
    EXPECT_DOUBLE_EQ(d, 2.5);
    EXPECT_EQ(s, "hello");
    EXPECT_THAT(lines, ElementsAre("[NOT] getBoolValueTransient client: client-a xml_id: a/b",
                                   "[NOT] getIntValueTransient client: client-a xml_id: a/i",
                                   "[NOT] getDoubleValueTransient client: client-a xml_id: a/d",
                                   "[NOT] getStringValueTransient client: client-a xml_id: a/s"));
}

TEST_F(PlixReadTest, TransientReadDuringOtherClientsTransactionReturnsCommittedValue)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("client-b", "a/i", value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixReadTest, HolderReadsCommittedValueNotPendingSet)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    int value = 0;
    EXPECT_EQ(engine->getIntValue("client-a", "a/i", value), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(PlixReadTest, GetIntOnDoubleReturns11LeavesOutputAndEndsTransaction)
{
    start();
    int value = 77;
    int result = -1;
    const auto lines = outputOf([&] { result = engine->getIntValue("client-a", "a/d", value); });
    EXPECT_EQ(result, 11);
    EXPECT_EQ(value, 77);
    EXPECT_THAT(lines, ElementsAre("[NOT] getIntValue client: client-a xml_id: a/d",
                                   "Read value: 2.5 with type 3",
                                   "[NOT] Clearing PLIX to be ready for new transactions",
                                   "[NOT] Requested wrong datatype for a/d"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

// Each read comes 1.5 s before the deadline that the call before it set; the
// end is 2 s past the deadline of the start.
TEST_F(PlixReadTest, ReadsWithinTheTimeOutKeepTransactionAlive)
{
    start();
    int value = 0;
    runMainLoopFor(2500);
    ASSERT_EQ(engine->getIntValue("client-a", "a/i", value), 0);
    runMainLoopFor(2500);
    ASSERT_EQ(engine->getIntValue("client-a", "a/i", value), 0);
    const auto waited = outputOf([] { runMainLoopFor(1000); });
    EXPECT_TRUE(waited.empty());
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixReadTest, ReadByNonHolderReturns4AndKeepsHoldersTransaction)
{
    start();
    int value = 0;
    int result = -1;
    const auto lines = outputOf([&] { result = engine->getIntValue("client-b", "a/i", value); });
    EXPECT_EQ(result, 4);
    EXPECT_THAT(
        lines,
        ElementsAre("[NOT] getIntValue client: client-b xml_id: a/i",
                    "[NOT] Plix is currently busy with another transaction with client client-a"));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixReadTest, ReadWithoutTransactionReturns4)
{
    std::string value = "untouched";
    int result = -1;
    const auto lines = outputOf([&] { result = engine->getStringValue("client-a", "a/s", value); });
    EXPECT_EQ(result, 4);
    EXPECT_EQ(value, "untouched");
    EXPECT_THAT(lines, ElementsAre("[NOT] getStringValue client: client-a xml_id: a/s",
                                   "[NOT] No transaction with plix active"));
}

TEST_F(PlixReadTest, ReadOfUndeclaredIdReturns9AndEndsTransaction)
{
    start();
    bool value = false;
    int result = -1;
    const auto lines =
        outputOf([&] { result = engine->getBoolValue("client-a", "a/missing", value); });
    EXPECT_EQ(result, 9);
    EXPECT_THAT(lines, ElementsAre("[NOT] getBoolValue client: client-a xml_id: a/missing",
                                   "[NOT] a/missing is not declared in the xml",
                                   "[NOT] Clearing PLIX to be ready for new transactions"));
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

TEST_F(PlixReadTest, TransientReadOfUndeclaredIdReturns9Silently)
{
    double value = 1.5;
    int result = -1;
    const auto lines =
        outputOf([&] { result = engine->getDoubleValueTransient("client-a", "nope", value); });
    EXPECT_EQ(result, 9);
    EXPECT_DOUBLE_EQ(value, 1.5);
    EXPECT_THAT(lines, ElementsAre("[NOT] getDoubleValueTransient client: client-a xml_id: nope"));
}

TEST_F(PlixReadTest, TransientReadOfWrongTypeReturns11AndKeepsTransaction)
{
    start();
    bool value = false;
    int result = -1;
    const auto lines =
        outputOf([&] { result = engine->getBoolValueTransient("client-b", "a/i", value); });
    EXPECT_EQ(result, 11);
    EXPECT_THAT(lines, ElementsAre("[NOT] getBoolValueTransient client: client-b xml_id: a/i",
                                   "[NOT] Requested wrong datatype for a/i"));
    EXPECT_EQ(engine->transactionStop("client-a"), 0);
}

TEST_F(PlixReadTest, PasswordCannotBeReadAndReadEndsTransaction)
{
    start();
    std::string value;
    EXPECT_EQ(engine->getStringValueTransient("client-b", "a/pw", value), 11);
    EXPECT_EQ(engine->getStringValue("client-a", "a/pw", value), 11);
    EXPECT_EQ(value, "");
    EXPECT_EQ(engine->transactionStop("client-a"), 4);
}

TEST_F(PlixReadTest, ValueWithDefaultIsRead)
{
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("client-a", "defaults/limit", value), 0);
    EXPECT_EQ(value, 7);
}

TEST_F(PlixReadTest, LinkedValueReadsContentOfValueWithSameJPath)
{
    int value = 0;
    EXPECT_EQ(engine->getIntValueTransient("client-a", "link/copy", value), 0);
    EXPECT_EQ(value, 5);
}
