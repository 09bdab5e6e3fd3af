#include "PlixLoadedConfig.h"
#include "PlixRollbackFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace {
const char* storeJson = R"({"d": {"count": 42, "ratio": 2.5, "name": "alpha", "on": true,
                            "secret": "stored-form"}})";
using Reading = PlixRollbackFile::Reading;

class PlixRollbackFileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        store = config.dir.write("store.json", storeJson);
        testing::internal::CaptureStdout();
        config.load("<Panel_file name=\"store\">" + store +
                    "</Panel_file><DataSet ID=\"d\"><File>store</File>" + value("count", "int") +
                    value("ratio", "double") + value("name", "string") + value("on", "bool") +
                    value("secret", "password,sha256,1000") + "</DataSet>");
        config.readAll();
        testing::internal::GetCapturedStdout();
    }

    static std::string value(const std::string& name, const std::string& type)
    {
        return "<Value name=\"" + name + "\" type=\"" + type + "\"><jpath>d." + name +
               "</jpath></Value>";
    }

    Reading readBack(std::vector<PlixRollbackEntry>& entries) const
    {
        return PlixRollbackFile(store).read(config.values, entries);
    }

    PlixLoadedConfig config;
    std::string store;
};
} // namespace

TEST_F(PlixRollbackFileTest, LivesBesideTheStoreFileUnderItsOneName)
{
    EXPECT_EQ(PlixRollbackFile(store).path(), config.dir.path("plix-rollback.json"));
}

TEST_F(PlixRollbackFileTest, LivesBesideTheFileALinkedStoreLeadsTo)
{
    std::filesystem::create_directory(config.dir.path("data"));
    std::filesystem::rename(store, config.dir.path("data/store.json"));
    std::filesystem::create_symlink("data/store.json", store);
    EXPECT_EQ(PlixRollbackFile(store).path(), config.dir.path("data/plix-rollback.json"));
}

TEST_F(PlixRollbackFileTest, EveryTypeComesBackAsItWasAPasswordInItsStoredForm)
{
    const std::vector<PlixRollbackEntry> written{
        {"d/count", PlixVariant(7)},
        {"d/ratio", PlixVariant(0.25)},
        {"d/name", PlixVariant(std::string("beta"))},
        {"d/on", PlixVariant(false)},
        {"d/secret", PlixVariant(PlixPassword("other-form", "password,sha256,1000", false))}};
    std::string error;
    ASSERT_TRUE(PlixRollbackFile(store).write(written, 1767225600, error)) << error;
    std::vector<PlixRollbackEntry> read;
    ASSERT_EQ(readBack(read), Reading::read);
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].xmlId, written[i].xmlId);
        EXPECT_EQ(read[i].content.getDataType(), written[i].content.getDataType());
        EXPECT_EQ(read[i].content.getAsString(), written[i].content.getAsString());
    }
}

TEST_F(PlixRollbackFileTest, IsReadableByItsOwnerOnly)
{
    std::string error;
    ASSERT_TRUE(PlixRollbackFile(store).write({{"d/count", PlixVariant(7)}}, 1, error));
    struct stat status;
    ASSERT_EQ(stat(config.dir.path("plix-rollback.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(PlixRollbackFileTest, NoFileReadsAsAbsentAndRemovingItSucceeds)
{
    std::vector<PlixRollbackEntry> read;
    EXPECT_EQ(readBack(read), Reading::absent);
    std::string error;
    EXPECT_TRUE(PlixRollbackFile(store).remove(error)) << error;
}

TEST_F(PlixRollbackFileTest, OneEntryOfAnotherTypeMakesTheWholeFileCorrupt)
{
    config.dir.write("plix-rollback.json",
                     R"({"deadline": 1, "values": [{"id": "d/name", "type": 1, "value": "x"},
                                                   {"id": "d/count", "type": 1, "value": "7"}]})");
    std::vector<PlixRollbackEntry> read;
    EXPECT_EQ(readBack(read), Reading::corrupt);
    EXPECT_TRUE(read.empty());
}

TEST_F(PlixRollbackFileTest, AnUndeclaredIdOrBrokenJsonIsCorrupt)
{
    std::vector<PlixRollbackEntry> read;
    config.dir.write("plix-rollback.json",
                     R"({"deadline": 1, "values": [{"id": "d/gone", "type": 2, "value": 7}]})");
    EXPECT_EQ(readBack(read), Reading::corrupt);
    config.dir.write("plix-rollback.json", R"({"deadline": 1, "values": [)");
    EXPECT_EQ(readBack(read), Reading::corrupt);
    config.dir.write("plix-rollback.json", R"({"values": []})");
    EXPECT_EQ(readBack(read), Reading::corrupt);
}

TEST_F(PlixRollbackFileTest, ACorruptFileIsRenamedAside)
{
    config.dir.write("plix-rollback.json", "{");
    std::string error;
    ASSERT_TRUE(PlixRollbackFile(store).moveAside(error)) << error;
    EXPECT_FALSE(config.dir.exists("plix-rollback.json"));
    EXPECT_EQ(config.dir.read("plix-rollback.json.corrupt"), "{");
}

TEST_F(PlixRollbackFileTest, WithoutAStoreThereIsNoFile)
{
    const PlixRollbackFile none("");
    std::string error;
    EXPECT_TRUE(none.write({{"d/count", PlixVariant(7)}}, 1, error));
    std::vector<PlixRollbackEntry> read;
    EXPECT_EQ(none.read(config.values, read), Reading::absent);
    EXPECT_TRUE(none.remove(error));
}
