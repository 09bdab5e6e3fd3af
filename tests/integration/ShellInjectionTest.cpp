#include "PlixIntegrationTest.h"

#include <string>
#include <vector>

namespace {
// "@Q@" stands for the quote written around both placeholders.
const char* const kXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plix_config>
  <Panel_file name="store">@DIR@/inject.json</Panel_file>
  <DataSet ID="inject">
    <File>store</File>
    <onChange type="Execute" command="printf '%s\n' @Q@%text@Q@ &gt;&gt; @DIR@/dataset.out"/>
    <Value name="text" type="string"><jpath>inject.text</jpath>
      <onChange type="Execute" command="printf '%s\n' @Q@%text@Q@ &gt;&gt; @DIR@/value.out"/>
    </Value>
  </DataSet>
</plix_config>
)";

// Placeholders that the shell cannot be given a value through: the loader
// warns of both commands, and a commit of either value answers 13.
const char* const kRefusedXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plix_config>
  <Panel_file name="store">@DIR@/inject.json</Panel_file>
  <DataSet ID="byValue">
    <File>store</File>
    <Value name="text" type="string"><jpath>byValue.text</jpath>
      <onChange type="Execute" command="touch @DIR@/ran \%text"/>
    </Value>
  </DataSet>
  <DataSet ID="byDataSet">
    <File>store</File>
    <onChange type="Execute" command="touch @DIR@/ran `echo %text`"/>
    <Value name="text" type="string"><jpath>byDataSet.text</jpath></Value>
  </DataSet>
</plix_config>
)";

struct PlixQuoting
{
    const char* name;
    // As written inside the XML attribute.
    const char* quote;
};

// A hundred value texts, each of which would create the canary file if a
// shell read it as code: every way of ending a word, a command or a quoted
// text, behind several kinds of leading text.
std::vector<std::string> injectionPayloads(const std::string& canary)
{
    const std::string touch = "touch " + canary;
    const std::vector<std::string> attacks{";" + touch,
                                           "&&" + touch,
                                           "||" + touch,
                                           "|" + touch,
                                           "&" + touch,
                                           "$(" + touch + ")",
                                           "`" + touch + "`",
                                           "\n" + touch,
                                           "';" + touch + ";'",
                                           "\";" + touch + ";\"",
                                           "\\';" + touch + ";#",
                                           ">" + canary,
                                           "$(printf '" + touch + "'|sh)",
                                           "%text;" + touch,
                                           "'%text';" + touch,
                                           "${IFS};" + touch + ";",
                                           "#\n" + touch,
                                           "\r\n" + touch,
                                           "$((0));" + touch,
                                           "'\\'';" + touch + ";'\\''"};
    const std::vector<std::string> leads{"", "value", "va'lue", "va\"lue", "-rf "};
    std::vector<std::string> payloads;
    for (const auto& lead : leads) {
        for (const auto& attack : attacks) {
            payloads.push_back(lead + attack);
        }
    }
    return payloads;
}

// Plain text with everything a shell treats specially in some quoting:
// blanks, both quotes, $, %, the placeholder itself and backslashes.
const std::string kPlainText = "it's a \"plain\"  text: $HOME %text 100% \\back\\slash\\";
} // namespace

class ShellInjectionTest : public PlixIntegrationTest,
                           public testing::WithParamInterface<PlixQuoting>
{
protected:
    // Starts the service with the placeholders in the quoting of the test.
    PlixBusClient* startQuoted()
    {
        dir().write("inject.json", R"({"inject": {"text": "start"}})");
        std::string xml = kXml;
        for (auto at = xml.find("@Q@"); at != std::string::npos; at = xml.find("@Q@", at)) {
            xml.replace(at, 3, GetParam().quote);
        }
        PlixServiceProcess& service = start({"-c", writeXml("inject.xml", xml)});
        if (!waitServing(service)) {
            ADD_FAILURE() << tail(service);
            return nullptr;
        }
        return &newClient();
    }

    static int commit(const PlixBusClient& client, const std::string& id, const std::string& text)
    {
        EXPECT_EQ(client.transactionStart(false), 0);
        EXPECT_EQ(client.setString(id, text), 0);
        return client.transactionStop();
    }
};

INSTANTIATE_TEST_SUITE_P(Quotings, ShellInjectionTest,
                         testing::Values(PlixQuoting{"Unquoted", ""},
                                         PlixQuoting{"DoubleQuoted", "&quot;"},
                                         PlixQuoting{"SingleQuoted", "'"}),
                         [](const testing::TestParamInfo<PlixQuoting>& info) {
                             return std::string(info.param.name);
                         });

TEST_P(ShellInjectionTest, HundredHostileValuesReachTheCommandsAsPlainTextAndRunNothing)
{
    PlixBusClient* client = startQuoted();
    ASSERT_NE(client, nullptr);
    const std::string canary = dir().file("canary");
    const auto payloads = injectionPayloads(canary);
    ASSERT_EQ(payloads.size(), 100u);

    std::string expected;
    for (const auto& payload : payloads) {
        EXPECT_EQ(commit(*client, "inject/text", payload), 0) << payload;
        EXPECT_FALSE(dir().exists("canary")) << "ran: " << payload;
        expected += payload + "\n";
    }
    // Each value arrived at printf as one word, byte for byte.
    EXPECT_EQ(fileText("value.out"), expected);
    EXPECT_EQ(fileText("dataset.out"), expected);
}

TEST_P(ShellInjectionTest, PlainTextWithQuotesDollarPercentAndBackslashesArrivesByteForByte)
{
    PlixBusClient* client = startQuoted();
    ASSERT_NE(client, nullptr);
    EXPECT_EQ(commit(*client, "inject/text", kPlainText), 0);
    EXPECT_EQ(fileText("value.out"), kPlainText + "\n");
    EXPECT_EQ(fileText("dataset.out"), kPlainText + "\n");
}

class ShellRefusalTest : public PlixIntegrationTest
{
};

TEST_F(ShellRefusalTest, PlaceholdersThatCannotBeQuotedAreWarnedOfAndTheirValuesRefusedWith13)
{
    dir().write("inject.json", R"({"byValue": {"text": "start"}, "byDataSet": {"text": "start"}})");
    PlixServiceProcess& service = start({"-c", writeXml("refused.xml", kRefusedXml)});
    ASSERT_TRUE(waitServing(service)) << tail(service);
    const std::string lines = service.stdoutText();
    EXPECT_NE(lines.find("[NOT] XML:\tExecute action of byValue/text refuses its values: "
                         "placeholder %text after a backslash in command: touch " +
                         dir().file("ran") + " \\%text\n"),
              std::string::npos)
        << lines;
    EXPECT_NE(lines.find("[NOT] XML:\tExecute action of byDataSet refuses its values: "
                         "placeholder %text inside backquotes in command: touch " +
                         dir().file("ran") + " `echo %text`\n"),
              std::string::npos)
        << lines;

    PlixBusClient& client = newClient();
    for (const std::string id : {"byValue/text", "byDataSet/text"}) {
        ASSERT_EQ(client.transactionStart(true), 0);
        ASSERT_EQ(client.setString(id, "new"), 0);
        EXPECT_EQ(client.transactionStop(), 13) << id;
        ASSERT_EQ(client.transactionStart(false), 0);
        EXPECT_EQ(client.getString(id).value, "start") << id;
        EXPECT_EQ(client.transactionStop(), 0);
    }
    EXPECT_FALSE(dir().exists("ran"));
}
