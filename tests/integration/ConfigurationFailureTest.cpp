#include "PlixIntegrationTest.h"
#include "PlixOutputLines.h"

namespace {
std::string configWith(const std::string& panelFiles, const std::string& dataSets)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plix_config>\n" + panelFiles + "\n" +
           dataSets + "\n</plix_config>\n";
}

const char* const kStorePanel = "<Panel_file name=\"store\">@DIR@/store.json</Panel_file>";
} // namespace

using ConfigurationFailure = PlixIntegrationTest;

TEST_F(ConfigurationFailure, MissingXmlEnds1)
{
    const std::string xml = dir().file("absent.xml");
    PlixServiceProcess& service = start({"-c", xml});
    EXPECT_EQ(service.waitExit(kExitBound), 1);
    EXPECT_EQ(plixLastLines(service.stdoutLines(), 2),
              (std::vector<std::string>{"[ERR] Failed to open xml file " + xml,
                                        "[NFO] Shutting down plix!"}));
}

TEST_F(ConfigurationFailure, JpathMissingFromItsJsonFileEnds5)
{
    writeConfig();
    const std::string xml = writeXml(
        "ghost.xml", configWith(kStorePanel, "<DataSet ID=\"general\"><File>store</File>"
                                             "<Value name=\"ghost\" type=\"int\">"
                                             "<jpath>general.ghost</jpath></Value></DataSet>"));
    PlixServiceProcess& service = start({"-c", xml});
    EXPECT_EQ(service.waitExit(kExitBound), 5);
    EXPECT_EQ(plixLastLines(service.stdoutLines(), 4),
              (std::vector<std::string>{
                  "[NOT] Read json value under path: general.ghost",
                  "[ERR] Could not find json-Node in store under Path : general.ghost",
                  "[ERR] Wrong Path was declared in config-xml under general/ghost",
                  "[NFO] Shutting down plix!"}));
}

TEST_F(ConfigurationFailure, FileNamingAnUndeclaredPanelFileEnds10)
{
    writeConfig();
    const std::string xml =
        writeXml("undeclared.xml",
                 configWith(kStorePanel, "<DataSet ID=\"general\"><File>nosuch</File></DataSet>"));
    PlixServiceProcess& service = start({"-c", xml});
    EXPECT_EQ(service.waitExit(kExitBound), 10);
    EXPECT_EQ(plixLastLines(service.stdoutLines(), 2),
              (std::vector<std::string>{
                  "[ERR] nosuch not declared at the beginning of the xml-config-file ",
                  "[NFO] Shutting down plix!"}));
}

TEST_F(ConfigurationFailure, UnreadableJsonEnds1)
{
    const std::string json = dir().write("broken.json", "{ \"general\": ");
    const std::string xml = writeXml(
        "broken.xml", configWith("<Panel_file name=\"broken\">@DIR@/broken.json</Panel_file>", ""));
    PlixServiceProcess& service = start({"-c", xml});
    EXPECT_EQ(service.waitExit(kExitBound), 1);
    EXPECT_EQ(plixLastLines(service.stdoutLines(), 2),
              (std::vector<std::string>{"[ERR] cannot open .json file: broken under path " + json,
                                        "[NFO] Shutting down plix!"}));
}
