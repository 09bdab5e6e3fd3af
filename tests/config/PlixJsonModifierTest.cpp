#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixLoadedConfig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {
const char* storeJson = R"({
  "general": {"count": 42, "ratio": 2.5, "name": "alpha", "enabled": true},
  "text": {"number": "17", "real": "0.5", "flag": "true", "other": "yes"},
  "list": [1, "two", {"three": null}],
  "secret": "stored-form"
})";

using Lines = std::vector<std::string>;

class PlixJsonModifierTest : public testing::Test
{
protected:
    void SetUp() override { store = config.dir.write("store.json", storeJson); }

    std::string panel(const std::string& type = "") const
    {
        return "<Panel_file name=\"store\" type=\"" + type + "\">" + store + "</Panel_file>";
    }

    static std::string value(const std::string& name, const std::string& type,
                             const std::string& jpath)
    {
        return "<Value name=\"" + name + "\" type=\"" + type + "\"><jpath>" + jpath +
               "</jpath></Value>";
    }

    // Loads one data set "d" stored in store.json and reads every value.
    void loadAndRead(const std::string& values, const std::string& type = "")
    {
        testing::internal::CaptureStdout();
        loadAndReadUncaptured(values, type);
        output = testing::internal::GetCapturedStdout();
    }

    void loadAndReadUncaptured(const std::string& values, const std::string& type = "")
    {
        config.load(panel(type) + "<DataSet ID=\"d\"><File>store</File>" + values + "</DataSet>");
        config.readAll();
    }

    PlixVariant contentOf(const std::string& name) { return config.value("d/" + name).getValue(); }

    std::string rewrite() { return rewriteUnwritten(0); }

    // Rewrites, expecting this many files to stay unwritten.
    std::string rewriteUnwritten(int expected)
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(config.json.rewrite_json(), expected);
        return testing::internal::GetCapturedStdout();
    }

    // A directory where the store file was: every write of it fails, and
    // removing the directory lets the next one through.
    void blockStore() const
    {
        std::filesystem::remove(store);
        std::filesystem::create_directory(store);
        std::filesystem::create_directory(store + "/keep");
    }

    PlixLoadedConfig config;
    std::string store;
    std::string output;
};
} // namespace

TEST_F(PlixJsonModifierTest, WithoutPanelFilesGetValueAndRewriteDoNothing)
{
    config.load("<DataSet ID=\"d\">" + value("n", "int", "general.count") + "</DataSet>");
    testing::internal::CaptureStdout();
    EXPECT_EQ(config.json.get_value(&config.value("d/n")), 0);
    EXPECT_EQ(config.json.rewrite_json(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(config.value("d/n").getJsonNode(), nullptr);
}

TEST_F(PlixJsonModifierTest, ReadingLogsThePathAndSetsNodeAndContent)
{
    loadAndRead(value("n", "int", "general.count"));
    Lines lines = PlixLoadedConfig::lines(output);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2], "[NOT] Read json value under path: general.count");
    EXPECT_EQ(lines.back(), "default mvalue 42");
    EXPECT_EQ(contentOf("n"), PlixVariant(42));
    ASSERT_NE(config.value("d/n").getJsonNode(), nullptr);
    EXPECT_TRUE(config.value("d/n").getJsonNode()->IsNumber());
}

TEST_F(PlixJsonModifierTest, IntValueUnderAStringNodeGetsTheIntAndIsWrittenBackAsString)
{
    loadAndRead(value("n", "int", "text.number"));
    EXPECT_EQ(contentOf("n"), PlixVariant(17));
    PlixValue& n = config.value("d/n");
    n.setValue(PlixVariant(18));
    testing::internal::CaptureStdout();
    n.changeJsonNode();
    testing::internal::GetCapturedStdout();
    rewrite();
    EXPECT_NE(config.dir.read("store.json").find("\"number\": \"18\""), std::string::npos);
}

TEST_F(PlixJsonModifierTest, DoubleValueUnderANumberNodeGetsTheDoubleAndIsWrittenBackAsNumber)
{
    loadAndRead(value("r", "double", "general.ratio"));
    EXPECT_EQ(contentOf("r"), PlixVariant(2.5));
    PlixValue& r = config.value("d/r");
    r.setValue(PlixVariant(3.25));
    testing::internal::CaptureStdout();
    r.changeJsonNode();
    testing::internal::GetCapturedStdout();
    rewrite();
    EXPECT_NE(config.dir.read("store.json").find("\"ratio\": 3.25,"), std::string::npos);
}

TEST_F(PlixJsonModifierTest, StringValueUnderABoolNodeGetsABoolContent)
{
    loadAndRead(value("e", "string", "general.enabled"));
    EXPECT_EQ(contentOf("e"), PlixVariant(true));
}

TEST_F(PlixJsonModifierTest, IntValueUnderANumberNodeGetsTheInt)
{
    loadAndRead(value("n", "int", "general.count"));
    EXPECT_EQ(contentOf("n").getDataType(), PlixVariant::INT);
}

TEST_F(PlixJsonModifierTest, FloatValueUnderAStringNodeReadsTheTextAsDouble)
{
    loadAndRead(value("f", "float", "text.real"));
    EXPECT_EQ(contentOf("f"), PlixVariant(0.5));
}

TEST_F(PlixJsonModifierTest, BoolValueUnderAStringNodeIsTrueOnlyForTrue)
{
    loadAndRead(value("t", "bool", "text.flag") + value("y", "bool", "text.other"));
    EXPECT_EQ(contentOf("t"), PlixVariant(true));
    EXPECT_EQ(contentOf("y"), PlixVariant(false));
}

TEST_F(PlixJsonModifierTest, StringValueUnderAStringNodeGetsTheText)
{
    loadAndRead(value("s", "string", "general.name"));
    EXPECT_EQ(contentOf("s"), PlixVariant("alpha"));
}

TEST_F(PlixJsonModifierTest, PasswordValueUnderAStringNodeTakesTheStoredForm)
{
    loadAndRead(value("p", "password,sha256,10", "secret"));
    EXPECT_EQ(contentOf("p").getDataType(), PlixVariant::PASSWORD);
    EXPECT_EQ(contentOf("p").asPlixPassword().getHashedPassword(), "stored-form");
}

TEST_F(PlixJsonModifierTest, UnknownTypeUnderAStringNodeSetsNoContent)
{
    loadAndRead(value("u", "uint8", "general.name"));
    EXPECT_EQ(contentOf("u").getDataType(), PlixVariant::NONE);
    EXPECT_NE(config.value("d/u").getJsonNode(), nullptr);
}

TEST_F(PlixJsonModifierTest, StringValueUnderANumberNodeSetsNoContent)
{
    loadAndRead(value("s", "string", "general.count"));
    EXPECT_EQ(contentOf("s").getDataType(), PlixVariant::NONE);
}

TEST_F(PlixJsonModifierTest, ObjectArrayAndNullNodesSetNoContent)
{
    loadAndRead(value("o", "string", "general") + value("a", "int", "list") +
                value("z", "string", "/list/2/three"));
    EXPECT_EQ(contentOf("o").getDataType(), PlixVariant::NONE);
    EXPECT_EQ(contentOf("a").getDataType(), PlixVariant::NONE);
    EXPECT_EQ(contentOf("z").getDataType(), PlixVariant::NONE);
}

TEST_F(PlixJsonModifierTest, ASecondValueWithTheSameJpathSharesContentAndNode)
{
    loadAndRead(value("a", "int", "general.count") + value("b", "int", "general.count"));
    PlixValue& a = config.value("d/a");
    PlixValue& b = config.value("d/b");
    EXPECT_EQ(b.getValuePtr(), a.getValuePtr());
    EXPECT_EQ(b.getJsonNode(), a.getJsonNode());
    Lines lines = PlixLoadedConfig::lines(output);
    EXPECT_EQ(
        std::count(lines.begin(), lines.end(), "[NOT] Read json value under path: general.count"),
        1);
}

TEST_F(PlixJsonModifierTest, ALinkedValueIsNotLookedUpInItsOwnFile)
{
    std::string empty = config.dir.write("empty.json", "{}");
    testing::internal::CaptureStdout();
    config.load(panel() + "<Panel_file name=\"empty\">" + empty + "</Panel_file>" +
                "<DataSet ID=\"d\"><File>store</File>" + value("a", "string", "general.name") +
                "</DataSet><DataSet ID=\"e\"><File>empty</File>" +
                value("b", "string", "general.name") + "</DataSet>");
    config.readAll();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(config.value("e/b").getValue(), PlixVariant("alpha"));
}

// A name declared twice names two files; a value of that name's data set is
// read from each, in declaration order, and keeps the last one's content.
TEST_F(PlixJsonModifierTest, AValueIsReadFromEveryFileOfItsFileNameInDeclarationOrder)
{
    std::string other = config.dir.write("other.json", R"({"general": {"name": "beta"}})");
    testing::internal::CaptureStdout();
    config.load(panel() + "<Panel_file name=\"store\">" + other + "</Panel_file>" +
                "<DataSet ID=\"d\"><File>store</File>" + value("n", "string", "general.name") +
                "</DataSet>");
    config.readAll();
    Lines lines = PlixLoadedConfig::lines(testing::internal::GetCapturedStdout());
    EXPECT_EQ(contentOf("n"), PlixVariant("beta"));
    EXPECT_EQ(
        std::count(lines.begin(), lines.end(), "[NOT] Read json value under path: general.name"),
        2);
}

TEST_F(PlixJsonModifierTest, JsonFileThatCannotBeReadEndsWithStatus1)
{
    std::string missing = config.dir.path("missing.json");
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            config.load("<Panel_file name=\"gone\">" + missing + "</Panel_file>");
        },
        testing::ExitedWithCode(1),
        PlixLoadedConfig::endsWithLines({"[NOT] Finished parsing " + config.dir.path("config.xml"),
                                         "[ERR] cannot open .json file: gone under path " + missing,
                                         "[NFO] Shutting down plix!"}));
}

namespace {
// Loading a configuration whose only store file "broken" holds the text ends
// the process as for a file that cannot be opened.
void expectStoreTextEndsWithStatus1(PlixLoadedConfig& config, const std::string& text)
{
    std::string broken = config.dir.write("broken.json", text);
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            config.load("<Panel_file name=\"broken\">" + broken + "</Panel_file>");
        },
        testing::ExitedWithCode(1),
        PlixLoadedConfig::endsWithLines(
            {"[ERR] cannot open .json file: broken under path " + broken,
             "[NFO] Shutting down plix!"}));
}
} // namespace

TEST_F(PlixJsonModifierTest, JsonFileThatDoesNotParseEndsWithStatus1)
{
    expectStoreTextEndsWithStatus1(config, "{\"a\": ");
}

// Such a file could never be written back by a commit. An object with 1000
// arrays nested in it nests 1001 levels deep.
TEST_F(PlixJsonModifierTest, JsonFileNestedDeeperThanAThousandLevelsEndsWithStatus1)
{
    expectStoreTextEndsWithStatus1(config, "{\"a\": " + std::string(1000, '[') +
                                               std::string(1000, ']') + "}");
}

TEST_F(PlixJsonModifierTest, JpathNotFoundEndsWithStatus5)
{
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            loadAndReadUncaptured(value("ip", "string", "general.missing"));
        },
        testing::ExitedWithCode(5),
        PlixLoadedConfig::endsWithLines(
            {"[NOT] Read json value under path: general.missing",
             "[ERR] Could not find json-Node in store under Path : general.missing",
             "[ERR] Wrong Path was declared in config-xml under d/ip",
             "[NFO] Shutting down plix!"}));
}

TEST_F(PlixJsonModifierTest, ChangedFileIsRewrittenWithItsMemberOrderKept)
{
    loadAndRead(value("s", "string", "general.name"));
    config.value("d/s").getJsonNode()->AsValue().Set(std::string("beta"));
    config.dataSet("d").getFile()->setReWrite();
    EXPECT_EQ(PlixLoadedConfig::lines(rewrite()), Lines{"[NFO] Rewriting " + store});
    EXPECT_FALSE(config.dataSet("d").getFile()->rewrite());
    std::string written = config.dir.read("store.json");
    EXPECT_EQ(written.rfind("{\n    \"general\": {\n        \"count\": 42,\n"
                            "        \"ratio\": 2.5,\n",
                            0),
              0u);
    EXPECT_LT(written.find("\"general\""), written.find("\"text\""));
    EXPECT_LT(written.find("\"list\""), written.find("\"secret\""));
    EXPECT_NE(written.find("\"name\": \"beta\""), std::string::npos);
    EXPECT_EQ(written.back(), '\n');
}

TEST_F(PlixJsonModifierTest, UnchangedFileIsNotWritten)
{
    loadAndRead(value("s", "string", "general.name"));
    config.value("d/s").getJsonNode()->AsValue().Set(std::string("beta"));
    EXPECT_EQ(rewrite(), "");
    EXPECT_EQ(config.dir.read("store.json"), storeJson);
}

TEST_F(PlixJsonModifierTest, ReadOnlyFileIsNeverWrittenAndKeepsItsRewriteFlag)
{
    loadAndRead(value("s", "string", "general.name"), "read_only");
    config.value("d/s").getJsonNode()->AsValue().Set(std::string("beta"));
    config.dataSet("d").getFile()->setReWrite();
    EXPECT_EQ(rewrite(), "");
    EXPECT_TRUE(config.dataSet("d").getFile()->rewrite());
    EXPECT_EQ(config.dir.read("store.json"), storeJson);
}

TEST_F(PlixJsonModifierTest, FailedWriteIsLoggedAndCountedAsUnwritten)
{
    loadAndRead(value("s", "string", "general.name"));
    blockStore();
    config.dataSet("d").getFile()->setReWrite();
    EXPECT_EQ(
        PlixLoadedConfig::lines(rewriteUnwritten(1)),
        (Lines{"[NFO] Rewriting " + store, "[ERR] Could not write " + store + ": Is a directory"}));
    EXPECT_TRUE(std::filesystem::is_directory(store + "/keep"));
}

TEST_F(PlixJsonModifierTest, FailedFileStaysMarkedAndIsListedWithItsError)
{
    loadAndRead(value("s", "string", "general.name"));
    blockStore();
    config.dataSet("d").getFile()->setReWrite();
    rewriteUnwritten(1);
    EXPECT_TRUE(config.dataSet("d").getFile()->rewrite());
    const auto failing = config.json.failingFiles();
    ASSERT_EQ(failing.size(), 1u);
    EXPECT_EQ(failing[0].path, store);
    EXPECT_EQ(failing[0].error, "Is a directory");
}

TEST_F(PlixJsonModifierTest, RetriesThatFailAlikeAddNoLines)
{
    loadAndRead(value("s", "string", "general.name"));
    blockStore();
    config.dataSet("d").getFile()->setReWrite();
    rewriteUnwritten(1);
    EXPECT_EQ(rewriteUnwritten(1), "");
    EXPECT_EQ(rewriteUnwritten(1), "");
}

// The retry writes what the document holds then: the latest content.
TEST_F(PlixJsonModifierTest, NextRewriteWritesTheFailedFileWithOneNotice)
{
    loadAndRead(value("s", "string", "general.name"));
    blockStore();
    config.dataSet("d").getFile()->setReWrite();
    rewriteUnwritten(1);
    rewriteUnwritten(1);
    config.value("d/s").getJsonNode()->AsValue().Set(std::string("gamma"));
    std::filesystem::remove_all(store);
    EXPECT_EQ(PlixLoadedConfig::lines(rewrite()),
              Lines{"[NOT] " + store + " written after 2 failed attempts"});
    EXPECT_FALSE(config.dataSet("d").getFile()->rewrite());
    EXPECT_TRUE(config.json.failingFiles().empty());
    EXPECT_NE(config.dir.read("store.json").find("\"name\": \"gamma\""), std::string::npos);
}
