#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixLoadedConfig.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
const char* storeJson = R"({"eth0": {"ip": "10.0.0.1", "mask": "255.0.0.0"}, "n": 3})";

class PlixXML_ParserTest : public testing::Test
{
protected:
    void SetUp() override { store = config.dir.write("store.json", storeJson); }

    std::string panel(const std::string& name = "store") const
    {
        return "<Panel_file name=\"" + name + "\">" + store + "</Panel_file>\n";
    }

    PlixLoadedConfig config;
    std::string store;
};

using Lines = std::vector<std::string>;
} // namespace

TEST_F(PlixXML_ParserTest, LogsParsingAndEveryDeclaredName)
{
    std::string output = config.loadCapturing(
        panel() + "<DataSet ID=\"eth0\"><File>store</File><Value name=\"ip\" type=\"string\">"
                  "<jpath>eth0.ip</jpath></Value></DataSet>");
    std::string xml = config.dir.path("config.xml");
    EXPECT_EQ(PlixLoadedConfig::lines(output),
              (Lines{"[NOT] Parsing " + xml, "[NOT] XML:\tNode: Panel_file Name: store",
                     "[NOT] XML:\tNode: DataSet Name: eth0", "[NOT] XML:\tNode: Value Name: ip",
                     "[NOT] Finished parsing " + xml}));
}

TEST_F(PlixXML_ParserTest, PanelFileTakesNameTypeAndPathFromItsText)
{
    config.load("<Panel_file name=\"ro\" type=\"read_only\">" + store +
                "</Panel_file><DataSet ID=\"d\"><File>ro</File></DataSet>");
    PlixFile* file = config.dataSet("d").getFile();
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->getName(), "ro");
    EXPECT_EQ(file->getType(), "read_only");
    EXPECT_EQ(file->getPath(), store);
}

TEST_F(PlixXML_ParserTest, DataSetsAreListedInDocumentOrder)
{
    config.load("<DataSet ID=\"a\"/><DataSet ID=\"b\"/>");
    ASSERT_EQ(config.dataSets.size(), 2u);
    EXPECT_EQ(config.dataSets[0]->getName(), "a");
    EXPECT_EQ(config.dataSets[1]->getName(), "b");
}

TEST_F(PlixXML_ParserTest, SameValueNameInTwoDataSetsMakesTwoEntries)
{
    config.load("<DataSet ID=\"eth0\"><Value name=\"ip\"/></DataSet>"
                "<DataSet ID=\"eth1\"><Value name=\"ip\"/></DataSet>");
    EXPECT_EQ(config.values.size(), 2u);
    EXPECT_EQ(config.value("eth0/ip").getName(), "ip");
    EXPECT_EQ(&config.value("eth1/ip").getDataSet(), &config.dataSet("eth1"));
}

TEST_F(PlixXML_ParserTest, RepeatedValueNameInOneDataSetReusesTheFirstEntry)
{
    config.load("<DataSet ID=\"eth0\"><Value name=\"ip\" type=\"string\"/>"
                "<Value name=\"ip\" type=\"int\"/></DataSet>");
    EXPECT_EQ(config.values.size(), 1u);
    std::vector<PlixValue*> listed = config.dataSet("eth0").getValues();
    ASSERT_EQ(listed.size(), 2u);
    EXPECT_EQ(listed[0], &config.value("eth0/ip"));
    EXPECT_EQ(listed[1], &config.value("eth0/ip"));
    EXPECT_EQ(config.value("eth0/ip").getValueType(), "int");
}

TEST_F(PlixXML_ParserTest, TypeAndDefaultAreSetOnTheTableEntry)
{
    config.load("<DataSet ID=\"d\"><Value name=\"n\" type=\"int\" default=\"42\"/></DataSet>");
    PlixValue& value = config.value("d/n");
    EXPECT_EQ(value.getValueType(), "int");
    EXPECT_FALSE(value.inJson());
    EXPECT_EQ(value.getValue(), PlixVariant(42));
}

TEST_F(PlixXML_ParserTest, ValueWithoutDefaultIsInJson)
{
    config.load("<DataSet ID=\"d\"><Value name=\"n\" type=\"int\"/></DataSet>");
    EXPECT_TRUE(config.value("d/n").inJson());
}

TEST_F(PlixXML_ParserTest, TypeBeforeNameActsOnThePreviousValue)
{
    config.load("<DataSet ID=\"d\"><Value name=\"a\" type=\"int\"/>"
                "<Value type=\"string\" name=\"b\"/></DataSet>");
    EXPECT_EQ(config.value("d/a").getValueType(), "string");
    EXPECT_EQ(config.value("d/b").getValueType(), "");
}

TEST_F(PlixXML_ParserTest, DefaultBeforeTypeSetsNoContent)
{
    config.load("<DataSet ID=\"d\"><Value name=\"n\" default=\"42\" type=\"int\"/></DataSet>");
    PlixValue& value = config.value("d/n");
    EXPECT_FALSE(value.inJson());
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::NONE);
    EXPECT_EQ(value.getValueType(), "int");
}

TEST_F(PlixXML_ParserTest, ValueOutsideAnyDataSetIsNotDeclared)
{
    config.load("<Value name=\"stray\" type=\"int\"/><DataSet ID=\"d\"/>");
    EXPECT_TRUE(config.values.empty());
}

TEST_F(PlixXML_ParserTest, JpathTextBecomesTheValuesPath)
{
    config.load("<DataSet ID=\"d\"><Value name=\"ip\"><jpath>eth0.ip</jpath></Value></DataSet>");
    EXPECT_EQ(config.value("d/ip").getJPath(), "eth0.ip");
    EXPECT_FALSE(config.value("d/ip").valueInJsonWillBeReadFromPreviousPlixValue());
}

TEST_F(PlixXML_ParserTest, TwoValuesWithTheSameJpathLinkTheSecondToTheFirst)
{
    config.load("<DataSet ID=\"a\"><Value name=\"ip\"><jpath>eth0.ip</jpath></Value></DataSet>"
                "<DataSet ID=\"b\"><Value name=\"ip\"><jpath>eth0.ip</jpath></Value></DataSet>");
    PlixValue& second = config.value("b/ip");
    EXPECT_TRUE(second.valueInJsonWillBeReadFromPreviousPlixValue());
    EXPECT_EQ(second.getLinkedPlixValueObject(), &config.value("a/ip"));
    EXPECT_FALSE(config.value("a/ip").valueInJsonWillBeReadFromPreviousPlixValue());
}

TEST_F(PlixXML_ParserTest, JpathsLinkWhateverFileTheirValuesBelongTo)
{
    std::string other = config.dir.write("other.json", "{}");
    config.load(panel() + "<Panel_file name=\"other\">" + other + "</Panel_file>" +
                "<DataSet ID=\"a\"><File>store</File><Value name=\"x\"><jpath>n</jpath></Value>"
                "</DataSet><DataSet ID=\"b\"><File>other</File><Value name=\"y\"><jpath>n</jpath>"
                "</Value></DataSet>");
    EXPECT_EQ(config.value("b/y").getLinkedPlixValueObject(), &config.value("a/x"));
}

TEST_F(PlixXML_ParserTest, JpathTextKeepsOnlyTheLastChunkOfCharacterData)
{
    config.load("<DataSet ID=\"d\"><Value name=\"v\"><jpath>a&amp;b</jpath></Value></DataSet>");
    EXPECT_EQ(config.value("d/v").getJPath(), "b");
}

TEST_F(PlixXML_ParserTest, EmptyJpathReusesTheChunkBeforeIt)
{
    config.load("<DataSet ID=\"d\"><Value name=\"v\"> <jpath/></Value></DataSet>");
    EXPECT_EQ(config.value("d/v").getJPath(), " ");
}

TEST_F(PlixXML_ParserTest, FileElementSetsTheFirstPanelFileOfThatName)
{
    config.load(panel() + "<Panel_file name=\"store\" type=\"read_only\">" + store +
                "</Panel_file><DataSet ID=\"d\"><File>store</File></DataSet>");
    ASSERT_NE(config.dataSet("d").getFile(), nullptr);
    EXPECT_EQ(config.dataSet("d").getFile()->getName(), "store");
    EXPECT_EQ(config.dataSet("d").getFile()->getType(), "");
}

TEST_F(PlixXML_ParserTest, FileNamingAnUndeclaredPanelFileEndsWithStatus10)
{
    std::string body = panel() + "<DataSet ID=\"d\"><File>ghost</File></DataSet>";
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            config.load(body);
        },
        testing::ExitedWithCode(10),
        PlixLoadedConfig::endsWithLines({"[ERR] ghost not declared at the beginning of the "
                                         "xml-config-file ",
                                         "[NFO] Shutting down plix!"}));
}

TEST_F(PlixXML_ParserTest, PanelFileDeclaredAfterItsFileIsFatal)
{
    std::string body = "<DataSet ID=\"d\"><File>store</File></DataSet>" + panel();
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            config.load(body);
        },
        testing::ExitedWithCode(10),
        PlixLoadedConfig::endsWithLines({"[ERR] store not declared at the beginning of the "
                                         "xml-config-file ",
                                         "[NFO] Shutting down plix!"}));
}

TEST_F(PlixXML_ParserTest, MissingXmlFileEndsWithStatus1)
{
    std::string missing = config.dir.path("missing.xml");
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            config.loadFile(missing);
        },
        testing::ExitedWithCode(1),
        PlixLoadedConfig::endsWithLines(
            {"[ERR] Failed to open xml file " + missing, "[NFO] Shutting down plix!"}));
}

TEST_F(PlixXML_ParserTest, MalformedXmlPrintsTheErrorAndKeepsWhatCameBefore)
{
    testing::internal::CaptureStdout();
    config.loadFile(config.dir.write("config.xml", "<plix_config><DataSet ID=\"a\"/><Value "
                                                   "name=\"v\"></DataSet><DataSet ID=\"b\"/>"));
    std::string output = testing::internal::GetCapturedStdout();
    std::string xml = config.dir.path("config.xml");
    EXPECT_EQ(PlixLoadedConfig::lines(output),
              (Lines{"[NOT] Parsing " + xml, "[NOT] XML:\tNode: DataSet Name: a",
                     "[NOT] XML:\tNode: Value Name: v", "Error: mismatched tag",
                     "[NOT] Finished parsing " + xml}));
    EXPECT_EQ(config.dataSets.size(), 1u);
    EXPECT_EQ(config.values.count("a/v"), 1u);
}

TEST_F(PlixXML_ParserTest, UnknownElementsAndAttributesAreIgnoredWhereverTheyStand)
{
    std::string output =
        config.loadCapturing("<Other name=\"x\"><DataSet ID=\"d\" colour=\"red\"><Misc/>"
                             "<Value name=\"v\" unit=\"s\"/></DataSet></Other>");
    EXPECT_EQ(PlixLoadedConfig::lines(output).size(), 4u);
    EXPECT_EQ(config.values.size(), 1u);
    EXPECT_EQ(config.dataSets.size(), 1u);
}

TEST_F(PlixXML_ParserTest, FileOver100000BytesLoadsWhole)
{
    std::string padding(150000, ' ');
    config.load("<Pad>" + padding + "</Pad><DataSet ID=\"late\"><Value name=\"v\"/></DataSet>");
    EXPECT_EQ(config.values.count("late/v"), 1u);
}

TEST_F(PlixXML_ParserTest, TextAfterAZeroByteIsNotSeen)
{
    std::string text = PlixLoadedConfig::document("<DataSet ID=\"a\"/>");
    text.insert(text.find("<DataSet"), std::string("\0<DataSet ID=\"b\"/>", 18));
    testing::internal::CaptureStdout();
    config.loadFile(config.dir.write("config.xml", text));
    std::string output = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(config.dataSets.empty());
    EXPECT_NE(output.find("\nError: no element found\n"), std::string::npos);
}

TEST_F(PlixXML_ParserTest, EveryPanelFileIsHandedToTheJsonStore)
{
    EXPECT_EXIT(
        {
            PlixLoadedConfig::stdoutToStderr();
            config.load(panel() + "<Panel_file name=\"bad\">/nonexistent/x.json</Panel_file>");
        },
        testing::ExitedWithCode(1),
        PlixLoadedConfig::endsWithLines(
            {"[ERR] cannot open .json file: bad under path /nonexistent/x.json",
             "[NFO] Shutting down plix!"}));
}
