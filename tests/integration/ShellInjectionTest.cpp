#include "PlixIntegrationTest.h"

#include <string>
#include <vector>

namespace {
const char* const kXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<plix_config>
  <Panel_file name="store">@DIR@/inject.json</Panel_file>
  <DataSet ID="inject">
    <File>store</File>
    <onChange type="Execute" command="printf '%s\n' %text &gt;&gt; @DIR@/dataset.out"/>
    <Value name="text" type="string"><jpath>inject.text</jpath>
      <onChange type="Execute" command="printf '%s\n' %text &gt;&gt; @DIR@/value.out"/>
    </Value>
  </DataSet>
</plix_config>
)";

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
} // namespace

class ShellInjectionTest : public PlixIntegrationTest
{
};

TEST_F(ShellInjectionTest, HundredHostileValuesReachTheCommandsAsPlainTextAndRunNothing)
{
    dir().write("inject.json", R"({"inject": {"text": "start"}})");
    PlixServiceProcess& service = start({"-c", writeXml("inject.xml", kXml)});
    ASSERT_TRUE(waitServing(service)) << tail(service);
    PlixBusClient& client = newClient();
    const std::string canary = dir().file("canary");
    const auto payloads = injectionPayloads(canary);
    ASSERT_EQ(payloads.size(), 100u);

    std::string expected;
    for (const auto& payload : payloads) {
        ASSERT_EQ(client.transactionStart(false), 0);
        ASSERT_EQ(client.setString("inject/text", payload), 0);
        EXPECT_EQ(client.transactionStop(), 0) << payload;
        EXPECT_FALSE(dir().exists("canary")) << "ran: " << payload;
        expected += payload + "\n";
    }
    // Each value arrived at printf as one word, byte for byte.
    EXPECT_EQ(fileText("value.out"), expected);
    EXPECT_EQ(fileText("dataset.out"), expected);
}
