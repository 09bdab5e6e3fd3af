#include "PlixEngineFixture.h"

#include <sys/stat.h>

using ::testing::ElementsAre;

namespace {

const char* const clearLine = "[NOT] Clearing PLIX to be ready for new transactions";

class PlixCommitTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
    }

    void start(bool persistent = true)
    {
        ASSERT_EQ(engine->transactionStart("client-a", persistent), 0);
    }

    int stop()
    {
        int result = -1;
        stopLines = outputOf([&] { result = engine->transactionStop("client-a"); });
        return result;
    }

    int storedInt(const std::string& xml_id)
    {
        int value = -1;
        EXPECT_EQ(engine->getIntValueTransient("test", xml_id, value), 0);
        return value;
    }

    std::vector<std::string> stopLines;
};

} // namespace

TEST_F(PlixCommitTest, StopByNonHolderReturns4AndLeavesTransactionOpen)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    int result = -1;
    const auto lines = outputOf([&] { result = engine->transactionStop("client-b"); });
    EXPECT_EQ(result, 4);
    EXPECT_THAT(lines, ElementsAre("[NOT] transactionStop client: client-b ",
                                   "[NOT] Client is not registered."));
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(storedInt("a/i"), 9);
}

TEST_F(PlixCommitTest, StopWithoutTransactionReturns4)
{
    EXPECT_EQ(stop(), 4);
    EXPECT_THAT(stopLines, ElementsAre("[NOT] transactionStop client: client-a ",
                                       "[NOT] Client is not registered."));
}

TEST_F(PlixCommitTest, StopWithEmptyListOnlyClears)
{
    const std::string before = readFile("main.json");
    start();
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(stopLines, ElementsAre("[NOT] transactionStop client: client-a ", clearLine));
    EXPECT_TRUE(actionLog().empty());
    EXPECT_EQ(readFile("main.json"), before);
}

TEST_F(PlixCommitTest, PersistentCommitAppliesRunsActionsAndRewritesStoreInOrder)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 42), 0);
    ASSERT_EQ(engine->setStringValue("client-a", "a/s", "world"), 0);
    ASSERT_EQ(engine->setDoubleValue("client-a", "a/d", 0.25), 0);
    ASSERT_EQ(engine->setBoolValue("client-a", "a/b", false), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(stopLines.back(), clearLine);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 42", "value-s world", "dataset-a"));
    const auto json = readJson("main.json");
    EXPECT_EQ(json["a"]["i"], 42);
    EXPECT_EQ(json["a"]["s"], "world");
    EXPECT_EQ(json["a"]["d"], 0.25);
    EXPECT_EQ(json["a"]["b"], false);
    std::vector<std::string> keys;
    for (const auto& member : json["a"].items()) {
        keys.push_back(member.key());
    }
    EXPECT_THAT(keys, ElementsAre("i", "d", "s", "b", "pw", "n"));
    EXPECT_EQ(json["ports"]["mainport"], 102);
}

TEST_F(PlixCommitTest, NonPersistentCommitKeepsNewValueInMemoryAndFileUnchanged)
{
    const std::string before = readFile("main.json");
    start(false);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 43), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(storedInt("a/i"), 43);
    EXPECT_EQ(readFile("main.json"), before);
}

TEST_F(PlixCommitTest, PersistentPasswordIsStoredHashedAndVerifiable)
{
    start();
    ASSERT_EQ(engine->setStringValue("client-a", "a/pw", "fresh"), 0);
    EXPECT_EQ(stop(), 0);
    const std::string stored = readJson("main.json")["a"]["pw"];
    EXPECT_EQ(stored.find("fresh"), std::string::npos);
    EXPECT_GT(stored.size(), 60u);
    start();
    EXPECT_EQ(engine->verify("client-a", "a/pw", std::string("fresh")), 0);
}

TEST_F(PlixCommitTest, OnlyReplacingSetIsAppliedOnce)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 10), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 20), 1);
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 20", "dataset-a"));
    EXPECT_EQ(storedInt("a/i"), 20);
}

TEST_F(PlixCommitTest, DataSetValidatorFailingOnSecondMarkedSetRollsBackBothAndRunsNoAction)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 50), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "ports/mainport", 80), 0);
    const std::string before = readFile("main.json");
    EXPECT_EQ(stop(), 203);
    EXPECT_THAT(stopLines, ElementsAre("[NOT] transactionStop client: client-a ",
                                       "[NOT] Validating DataSet ports failed.", clearLine));
    EXPECT_EQ(storedInt("a/i"), 5);
    EXPECT_EQ(storedInt("ports/mainport"), 102);
    EXPECT_TRUE(actionLog().empty());
    EXPECT_EQ(readFile("main.json"), before);
    EXPECT_EQ(stop(), 4);
}

TEST_F(PlixCommitTest, ConnectionPriorityValidatorCodeReachesClient)
{
    start();
    ASSERT_EQ(engine->setBoolValue("client-a", "prio/refuseconcurrentconnections", true), 0);
    EXPECT_EQ(stop(), 207);
    bool value = true;
    ASSERT_EQ(engine->getBoolValueTransient("t", "prio/refuseconcurrentconnections", value), 0);
    EXPECT_FALSE(value);
}

TEST_F(PlixCommitTest, FailingValueActionRollsBackChangedValuesAndReturnsItsCode)
{
    writeFile("fail-value-i", "");
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/n", 2), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 60), 0);
    ASSERT_EQ(engine->setStringValue("client-a", "a/s", "later"), 0);
    EXPECT_EQ(stop(), 13);
    ASSERT_GE(stopLines.size(), 3u);
    EXPECT_EQ(stopLines[stopLines.size() - 2], "[NOT] Triggering onChange with Value i failed.");
    EXPECT_EQ(stopLines.back(), clearLine);
    EXPECT_EQ(storedInt("a/i"), 5);
    EXPECT_EQ(storedInt("a/n"), 1);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 60"));
}

TEST_F(PlixCommitTest, BootOnlyValueActionIsNeverRunByCommit)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 61), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 61", "dataset-a"));
}

TEST_F(PlixCommitTest, FailingDataSetActionRollsBackMembersThatStillHoldAnOldValue)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/n", 2), 0);
    ASSERT_EQ(stop(), 0);
    writeFile("fail-dataset-a", "");
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 62), 0);
    EXPECT_EQ(stop(), 13);
    EXPECT_EQ(stopLines[stopLines.size() - 2], "[NOT] Triggering onChange with DataSet a failed.");
    EXPECT_EQ(stopLines.back(), clearLine);
    EXPECT_EQ(storedInt("a/i"), 5);
    EXPECT_EQ(storedInt("a/n"), 1);
    double d = 0.0;
    ASSERT_EQ(engine->getDoubleValueTransient("t", "a/d", d), 0);
    EXPECT_DOUBLE_EQ(d, 2.5);
}

TEST_F(PlixCommitTest, ValueWithDefaultIsCommittedButNeverWrittenToStore)
{
    const std::string before = readFile("main.json");
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "defaults/limit", 9), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(storedInt("defaults/limit"), 9);
    EXPECT_EQ(readJson("main.json"), nlohmann::ordered_json::parse(before));
}

TEST_F(PlixCommitTest, LinkedValueSharesCommittedContentAndNode)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "link/copy", 33), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(storedInt("a/i"), 33);
    EXPECT_EQ(readJson("main.json")["a"]["i"], 33);
}

TEST_F(PlixCommitTest, ReadOnlyFileIsNeverWritten)
{
    struct stat before = {};
    ASSERT_EQ(stat(path("fixed.json").c_str(), &before), 0);
    const std::string text = readFile("fixed.json");
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 44), 0);
    EXPECT_EQ(stop(), 0);
    start();
    EXPECT_EQ(engine->setStringValue("client-a", "fixed/serial", "SN-9"), 15);
    EXPECT_EQ(engine->setStringValueTransient("client-a", "fixed/serial", "SN-9"), 15);
    struct stat after = {};
    ASSERT_EQ(stat(path("fixed.json").c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(readFile("fixed.json"), text);
}

TEST_F(PlixCommitTest, CommitAfterFailureStartsFromCleanMarks)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "ports/mainport", 80), 0);
    ASSERT_EQ(stop(), 203);
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 7), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 7", "dataset-a"));
}

TEST_F(PlixCommitTest, DataSetActionsRunInXmlOrderWhateverTheOrderOfTheSets)
{
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "ports/httpport", 8081), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 7), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(actionLog(), ElementsAre("value-i 7", "dataset-a", "dataset-ports"));
}

TEST_F(PlixCommitTest, TransientSetMarksItsDataSetUntilTheNextCommitEnds)
{
    ASSERT_EQ(engine->setIntValueTransient("test", "ports/httpport", 8081), 0);
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 7), 0);
    EXPECT_EQ(stop(), 0);
    start();
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 8), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(actionLog(),
                ElementsAre("value-i 7", "dataset-a", "dataset-ports", "value-i 8", "dataset-a"));
}
