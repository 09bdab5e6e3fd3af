#include "PlixEngineFixture.h"

#include <filesystem>

namespace {

// A commit whose store file cannot be written: here a directory stands where
// main.json was, so that every write of it fails until it is taken away.
class PlixStoreFailureTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
    }

    void blockMainStore() const
    {
        std::filesystem::remove(path("main.json"));
        std::filesystem::create_directory(path("main.json"));
    }

    void unblockMainStore() const { std::filesystem::remove(path("main.json")); }

    // One persistent transaction of one integer set; answers the commit's
    // code and leaves the file it names in unstoredFile.
    int commitInt(const std::string& xml_id, int value)
    {
        EXPECT_EQ(engine->transactionStart("client-a", true), 0);
        EXPECT_EQ(engine->setIntValue("client-a", xml_id, value), 0);
        int result = -1;
        outputOf([&] { result = engine->transactionStop("client-a", unstoredFile); });
        return result;
    }

    int storedInt(const std::string& xml_id)
    {
        int value = -1;
        EXPECT_EQ(engine->getIntValueTransient("test", xml_id, value), 0);
        return value;
    }

    std::string unstoredFile = "(not set)";
};

} // namespace

TEST_F(PlixStoreFailureTest, ACommitWhoseFileIsWrittenNamesNoFile)
{
    EXPECT_EQ(commitInt("a/i", 9), 0);
    EXPECT_EQ(unstoredFile, "");
    EXPECT_TRUE(engine->storeStatus().empty());
}

TEST_F(PlixStoreFailureTest, ACommitWhoseFileCannotBeWrittenAnswers0AndNamesTheFile)
{
    blockMainStore();
    EXPECT_EQ(commitInt("a/i", 9), 0);
    EXPECT_EQ(unstoredFile, path("main.json"));
}

TEST_F(PlixStoreFailureTest, TheValuesOfACommitThatWasNotStoredStayApplied)
{
    blockMainStore();
    commitInt("a/i", 9);
    EXPECT_EQ(storedInt("a/i"), 9);
}

TEST_F(PlixStoreFailureTest, StoreStatusListsTheFileWithItsError)
{
    blockMainStore();
    commitInt("a/i", 9);
    const auto failing = engine->storeStatus();
    ASSERT_EQ(failing.size(), 1u);
    EXPECT_EQ(failing[0].path, path("main.json"));
    EXPECT_EQ(failing[0].error, "Is a directory");
}

// The value with a default has no place in any file, and its commit still
// rewrites every file that is due.
TEST_F(PlixStoreFailureTest, TheNextPersistentCommitWritesTheFileThatFailed)
{
    blockMainStore();
    commitInt("a/i", 9);
    unblockMainStore();
    EXPECT_EQ(commitInt("defaults/limit", 8), 0);
    EXPECT_EQ(unstoredFile, "");
    EXPECT_TRUE(engine->storeStatus().empty());
    EXPECT_EQ(readJson("main.json")["a"]["i"], 9);
}

TEST_F(PlixStoreFailureTest, AnEarlierFailureIsNotTheFailureOfACommitOfNoFile)
{
    blockMainStore();
    commitInt("a/i", 9);
    EXPECT_EQ(commitInt("defaults/limit", 8), 0);
    EXPECT_EQ(unstoredFile, "");
    EXPECT_EQ(engine->storeStatus().size(), 1u);
}

TEST_F(PlixStoreFailureTest, TheConfigurationInterfacesStopAnswers0)
{
    blockMainStore();
    ASSERT_EQ(engine->transactionStart("client-a", true), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    int result = -1;
    outputOf([&] { result = engine->transactionStop("client-a"); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(engine->storeStatus().size(), 1u);
}
