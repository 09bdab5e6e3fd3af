#include "PlixBenchConfig.h"

#include "PlixPassword.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {
class PlixBenchConfigTest : public testing::Test
{
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/plix-bench-config-test-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(pattern));
        directory = pattern;
    }

    void TearDown() override { std::filesystem::remove_all(directory); }

    std::string read(const std::string& name) const
    {
        std::ifstream in(directory + "/" + name);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    nlohmann::json store(int index) const
    {
        return nlohmann::json::parse(read("store" + std::to_string(index) + ".json"));
    }

    std::string directory;
};
} // namespace

TEST(PlixBenchConfigSplitTest, ValuesAreSplitIntoFilesOfAThousand)
{
    EXPECT_EQ((std::vector<int>{1000, 1000, 500}), PlixBenchConfig::splitIntoFiles(2500));
}

TEST(PlixBenchConfigSplitTest, FewValuesMakeOneFile)
{
    EXPECT_EQ((std::vector<int>{100}), PlixBenchConfig::splitIntoFiles(100));
}

TEST(PlixBenchConfigSplitTest, IntIdsAreFivePerDataSet)
{
    EXPECT_EQ(
        (std::vector<std::string>{"ds0/v0", "ds0/v4", "ds0/v8", "ds0/v12", "ds0/v16", "ds1/v0"}),
        PlixBenchConfig::intIds(6));
}

TEST_F(PlixBenchConfigTest, EachFileHoldsItsValuesInDataSetsOfTwenty)
{
    PlixBenchConfig config(directory);
    ASSERT_TRUE(config.write({30, 10}));
    const nlohmann::json first = store(0);
    EXPECT_EQ(2u, first.size());
    EXPECT_EQ(20u, first["ds0"].size());
    EXPECT_EQ(10u, first["ds1"].size());
    EXPECT_EQ(10u, store(1)["ds2"].size());
}

TEST_F(PlixBenchConfigTest, FirstIntOfEachFileNamesItsFirstDataSet)
{
    PlixBenchConfig config(directory);
    ASSERT_TRUE(config.write({10, 1000, 5}));
    EXPECT_EQ((std::vector<std::string>{"ds0/v0", "ds1/v0", "ds51/v0"}),
              config.firstIntOfEachFile());
}

TEST_F(PlixBenchConfigTest, TypesTurnIntStringBoolDouble)
{
    PlixBenchConfig config(directory);
    ASSERT_TRUE(config.write({20}));
    const nlohmann::json values = store(0)["ds0"];
    EXPECT_TRUE(values["v4"].is_number_integer());
    EXPECT_EQ("text5", values["v5"]);
    EXPECT_TRUE(values["v6"].is_boolean());
    EXPECT_DOUBLE_EQ(7.5, values["v7"].get<double>());
}

TEST_F(PlixBenchConfigTest, PasswordIsStoredInItsHashedForm)
{
    PlixBenchConfig config(directory);
    ASSERT_TRUE(config.write({20}));
    const std::string stored = store(0)["ds0"]["v1"];
    EXPECT_TRUE(PlixPassword(stored, PlixBenchConfig::passwordType(), false) ==
                PlixBenchConfig::passwordPlainText());
    EXPECT_NE(std::string::npos,
              read("plix_config.xml").find("<Value name=\"v1\" type=\"password,sha256,1000\">"));
}

TEST_F(PlixBenchConfigTest, XmlDeclaresEveryFileAndJPath)
{
    PlixBenchConfig config(directory);
    ASSERT_TRUE(config.write({20, 20}));
    const std::string xml = read("plix_config.xml");
    EXPECT_NE(std::string::npos, xml.find("<Panel_file name=\"store1\" type=\"read_write\">" +
                                          directory + "/store1.json</Panel_file>"));
    EXPECT_NE(std::string::npos, xml.find("<File>store1</File>"));
    EXPECT_NE(std::string::npos, xml.find("<jpath>ds1.v19</jpath>"));
}

TEST_F(PlixBenchConfigTest, SomeValuesCarryValidators)
{
    PlixBenchConfig config(directory);
    ASSERT_TRUE(config.write({20}));
    const std::string xml = read("plix_config.xml");
    EXPECT_NE(std::string::npos,
              xml.find("<validation type=\"MinMaxValidator\" min=\"-1000000\" max=\"1000000\"/>"));
    EXPECT_NE(std::string::npos,
              xml.find("<validation type=\"StringLengthValidator\" min=\"0\" max=\"64\"/>"));
}

TEST_F(PlixBenchConfigTest, UnwritableDirectoryFails)
{
    PlixBenchConfig config(directory + "/missing");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(config.write({10}));
    EXPECT_EQ("cannot write " + directory + "/missing/store0.json\n",
              testing::internal::GetCapturedStderr());
}
