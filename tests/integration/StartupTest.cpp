#include "PlixIntegrationTest.h"
#include "PlixOutputLines.h"
#include "PlixTestPaths.h"

namespace {
const std::vector<std::string> kUsageLines{
    "",
    "Usage: dbus-ex-plix [OPTION]",
    "",
    "Options:",
    "  -s      triggering all onChangeHandler on startup",
    "  -c FILENAME     uses the xml under this certain path to configure plix",
    "",
    ""};

std::vector<std::string> withUsage(std::vector<std::string> lines)
{
    lines.insert(lines.end(), kUsageLines.begin(), kUsageLines.end());
    return lines;
}
} // namespace

using Startup = PlixIntegrationTest;

TEST_F(Startup, LinesComeInTheStartUpOrder)
{
    const std::string xml = writeConfig();
    PlixServiceProcess& service = start({"-c", xml});
    ASSERT_TRUE(waitServing(service)) << tail(service);
    const std::vector<std::string> expected{
        "[NFO] Starting DBUS Service com.orvanta.plix",
        "[DEB] Register default Interface com.orvanta.dbus under Path: /ctrl",
        "[NFO] Register Interface: com.orvanta.plix.dBusAdaptor under Path: /plix",
        "[NFO] Register as DBUS Service com.orvanta.plix",
        "[DEB] Init Main loop",
        "[NFO] Configuring Plix",
        "[NFO] XML Config File Path: " + xml,
        "[NOT] Parsing " + xml};
    const auto lines = service.stdoutLines();
    ASSERT_GE(lines.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + expected.size()), expected);
    EXPECT_TRUE(plixLinesInOrder(lines, {"[NOT] XML:\tNode: Panel_file Name: store",
                                         "[NOT] XML:\tNode: DataSet Name: general",
                                         "[NOT] XML:\tNode: Value Name: count",
                                         "[NOT] Finished parsing " + xml,
                                         "[NOT] Read json value under path: general.count"}));
}

TEST_F(Startup, SecondDashCReplacesTheFirst)
{
    const std::string xml = writeConfig();
    const std::string first = dir().file("first.xml");
    PlixServiceProcess& service = start({"-c", first, "-c", xml});
    ASSERT_TRUE(waitServing(service)) << tail(service);
    EXPECT_TRUE(plixLinesAdjacent(service.stdoutLines(),
                                  {"[NFO] XML Config File Path: " + first,
                                   "[NFO] XML Config File Path: " + xml, "[NOT] Parsing " + xml}));
}

TEST_F(Startup, WithoutDashCTheDefaultFileIsTaken)
{
    PlixServiceProcess& service = start({});
    EXPECT_TRUE(service.waitForLine("[NFO] No XML-file specified for Plix. Taking default "
                                    "XML-file, path: /etc/orvanta/plix/plix_config.xml",
                                    kStartBound))
        << tail(service);
    // The test machine has no file there, so the service ends by itself.
    EXPECT_EQ(service.waitExit(kExitBound), 1) << tail(service);
}

TEST_F(Startup, HelpPrintsTheUsageAndEnds1AfterOwningTheName)
{
    PlixServiceProcess& service = start({"-h"});
    EXPECT_EQ(service.waitExit(kExitBound), 1);
    // "Configuring Plix" is written once the name is owned and the objects
    // are exported.
    EXPECT_EQ(plixLastLines(service.stdoutLines(), 10),
              withUsage({"[DEB] Init Main loop", "[NFO] Configuring Plix"}));
    EXPECT_EQ(service.stderrText(), std::string(PLIX_SERVICE_BINARY) + ": invalid option -- 'h'\n");
}

TEST_F(Startup, UnknownOptionPrintsTheUsageAndEnds1)
{
    PlixServiceProcess& service = start({"-x"});
    EXPECT_EQ(service.waitExit(kExitBound), 1);
    EXPECT_EQ(plixLastLines(service.stdoutLines(), 10),
              withUsage({"[DEB] Init Main loop", "[NFO] Configuring Plix"}));
    // Both option passes complain: the first knows only -d.
    const std::string complaint = std::string(PLIX_SERVICE_BINARY) + ": invalid option -- 'x'\n";
    EXPECT_EQ(service.stderrText(), complaint + complaint);
}
