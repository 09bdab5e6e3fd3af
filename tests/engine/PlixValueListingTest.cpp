#include "PlixEngineFixture.h"

namespace {

std::vector<std::string> idsOf(const std::vector<PlixValueListing::Entry>& entries)
{
    std::vector<std::string> ids;
    for (const auto& entry : entries) {
        ids.push_back(entry.xmlId);
    }
    return ids;
}

const PlixValueListing::Entry& entryNamed(const std::vector<PlixValueListing::Entry>& entries,
                                          const std::string& xml_id)
{
    for (const auto& entry : entries) {
        if (entry.xmlId == xml_id) {
            return entry;
        }
    }
    throw std::out_of_range(xml_id);
}

} // namespace

class PlixValueListingTest : public PlixEngineFixture
{
protected:
    // Configures the engine with one store file holding STORE and a data set
    // "a" on it that declares VALUES, followed by the data sets in OTHERS.
    void configureWithStore(const std::string& store, const std::string& values,
                            const std::string& others = "")
    {
        writeFile("main.json", store);
        writeFile("listing.xml", "<plix>\n<Panel_file name=\"main\">DIR/main.json</Panel_file>\n"
                                 "<DataSet ID=\"a\">\n<File>main</File>\n" +
                                     values + "</DataSet>\n" + others + "</plix>\n");
        configureWith({"-c", path("listing.xml")});
    }
};

TEST_F(PlixValueListingTest, ListsEveryValueInTheOrderOfTheXmlFile)
{
    configureTestEngine();
    EXPECT_THAT(idsOf(engine->listValues()),
                ::testing::ElementsAre("a/i", "a/d", "a/s", "a/b", "a/pw", "a/n", "ports/mainport",
                                       "ports/displayport", "ports/httpport",
                                       "prio/disconnectexistconnections", "prio/sharedsessions",
                                       "prio/refuseconcurrentconnections", "fixed/serial",
                                       "defaults/limit", "link/copy"));
}

TEST_F(PlixValueListingTest, GivesTheTypeTextAsDeclaredTheFileAndItsAccess)
{
    configureTestEngine();
    const auto entries = engine->listValues();
    const auto& password = entryNamed(entries, "a/pw");
    EXPECT_EQ(password.valueType, "password,sha256,2");
    EXPECT_EQ(password.fileName, "main");
    EXPECT_FALSE(password.readOnly);
    EXPECT_EQ(password.dataType, PlixVariant::PASSWORD);
    const auto& serial = entryNamed(entries, "fixed/serial");
    EXPECT_EQ(serial.valueType, "string");
    EXPECT_EQ(serial.fileName, "fixed");
    EXPECT_TRUE(serial.readOnly);
    EXPECT_EQ(serial.dataType, PlixVariant::STRING);
    EXPECT_EQ(entryNamed(entries, "a/d").dataType, PlixVariant::DOUBLE);
}

TEST_F(PlixValueListingTest, RepeatedDeclarationIsListedOnce)
{
    configureWithStore(R"({"a": {"i": 1, "j": 2}})", R"(
        <Value name="i" type="int"><jpath>a.i</jpath></Value>
        <Value name="j" type="int"><jpath>a.j</jpath></Value>
        <Value name="i" type="int"><jpath>a.i</jpath></Value>
)");
    EXPECT_THAT(idsOf(engine->listValues()), ::testing::ElementsAre("a/i", "a/j"));
}

TEST_F(PlixValueListingTest, DataTypeOfNamesTheTypeOfTheCurrentContent)
{
    configureTestEngine();
    EXPECT_EQ(engine->dataTypeOf("a/i"), PlixVariant::INT);
    EXPECT_EQ(engine->dataTypeOf("a/d"), PlixVariant::DOUBLE);
    EXPECT_EQ(engine->dataTypeOf("a/b"), PlixVariant::BOOL);
    EXPECT_EQ(engine->dataTypeOf("a/pw"), PlixVariant::PASSWORD);
    EXPECT_EQ(engine->dataTypeOf("fixed/serial"), PlixVariant::STRING);
}

TEST_F(PlixValueListingTest, DataTypeOfAnUndeclaredIdIsNone)
{
    configureTestEngine();
    EXPECT_EQ(engine->dataTypeOf("a/missing"), PlixVariant::NONE);
    EXPECT_EQ(engine->dataTypeOf(""), PlixVariant::NONE);
}

TEST_F(PlixValueListingTest, DataTypeOfADeclaredValueWithoutContentIsNone)
{
    configureWithStore(R"({"a": {"s": 5, "i": 1}})", R"(
        <Value name="s" type="string"><jpath>a.s</jpath></Value>
        <Value name="u" type="uint" default="3"/>
        <Value name="i" type="int"><jpath>a.i</jpath></Value>
)",
                       R"(<DataSet ID="nofile">
        <Value name="x" type="int"><jpath>nofile.x</jpath></Value>
    </DataSet>
)");
    EXPECT_EQ(engine->dataTypeOf("a/s"), PlixVariant::NONE);
    EXPECT_EQ(engine->dataTypeOf("a/u"), PlixVariant::NONE);
    EXPECT_EQ(engine->dataTypeOf("nofile/x"), PlixVariant::NONE);
    EXPECT_EQ(engine->dataTypeOf("a/i"), PlixVariant::INT);
}
