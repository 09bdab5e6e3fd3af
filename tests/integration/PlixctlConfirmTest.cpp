// plixctl's changes kept only if confirmed, and its export and import of the
// whole configuration.
#include "PlixctlFixture.h"

#include <csignal>
#include <regex>

namespace {
std::string tokenIn(const std::string& out)
{
    std::smatch found;
    return std::regex_search(out, found, std::regex("token: ([0-9a-f]{32})\n")) ? found[1].str()
                                                                                : "";
}
} // namespace

using PlixctlConfirm = Plixctl;

TEST_F(PlixctlConfirm, SetConfirmPrintsTheTokenAndTheDeadlineAndConfirmKeepsTheChange)
{
    const auto set = run({"set", "--confirm", "600", "general/label=beta"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_TRUE(std::regex_match(set.out, std::regex("committed, awaiting confirmation: 1 value\n"
                                                     "token: [0-9a-f]{32}\n"
                                                     "deadline: \\d{4}-\\d\\d-\\d\\dT\\d\\d:"
                                                     "\\d\\d:\\d\\dZ\n")))
        << set.out;
    const auto pending = run({"pending"});
    EXPECT_EQ(pending.status, 0);
    EXPECT_TRUE(std::regex_match(
        pending.out, std::regex("pending: (600|5\\d\\d) seconds left: general/label\n")))
        << pending.out;
    const auto confirmed = run({"confirm", tokenIn(set.out)});
    EXPECT_EQ(confirmed.status, 0);
    EXPECT_EQ(confirmed.out, "confirmed\n");
    EXPECT_EQ(run({"pending"}).out, "nothing pending\n");
    EXPECT_EQ(storeJson()["general"]["label"], "beta");
}

TEST_F(PlixctlConfirm, CancelPutsTheOldValueBack)
{
    const auto set = run({"set", "--confirm=60", "general/label=beta", "general/count=7"});
    ASSERT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(run({"--json", "pending"}).out.substr(0, 16), "{\"pending\":true,");
    const auto cancelled = run({"cancel", tokenIn(set.out)});
    EXPECT_EQ(cancelled.status, 0);
    EXPECT_EQ(cancelled.out, "cancelled, the old values are back\n");
    EXPECT_EQ(run({"get", "general/label", "general/count"}).out,
              "general/label=alpha\ngeneral/count=42\n");
    EXPECT_EQ(run({"--json", "pending"}).out,
              "{\"pending\":false,\"seconds_left\":0,\"ids\":[]}\n");
}

TEST_F(PlixctlConfirm, AWrongTokenExits3)
{
    ASSERT_EQ(run({"set", "--confirm", "60", "general/label=beta"}).status, 0);
    const auto confirmed = run({"confirm", "00000000000000000000000000000000"});
    EXPECT_EQ(confirmed.status, 3);
    EXPECT_NE(confirmed.err.find("(code 4)"), std::string::npos) << confirmed.err;
    EXPECT_EQ(run({"cancel", "nonsense"}).status, 3);
}

TEST_F(PlixctlConfirm, WhilePendingASetExits3)
{
    ASSERT_EQ(run({"set", "--confirm", "60", "general/label=beta"}).status, 0);
    const auto set = run({"set", "general/count=7"});
    EXPECT_EQ(set.status, 3);
    EXPECT_NE(set.err.find("(code 8)"), std::string::npos) << set.err;
}

TEST_F(PlixctlConfirm, AWindowOutsideTenTo3600SecondsExits5)
{
    const auto set = run({"set", "--confirm", "5", "general/label=beta"});
    EXPECT_EQ(set.status, 5);
    EXPECT_NE(set.err.find("(code 200)"), std::string::npos) << set.err;
    EXPECT_EQ(run({"pending"}).out, "nothing pending\n");
}

TEST_F(PlixctlConfirm, ConfirmWithOtherSetModesOrCommandsIsAUsageError)
{
    EXPECT_EQ(run({"set", "--transient", "--confirm", "60", "general/label=beta"}).status, 64);
    EXPECT_EQ(run({"get", "--confirm", "60", "general/label"}).status, 64);
    EXPECT_EQ(run({"set", "--confirm", "sixty", "general/label=beta"}).status, 64);
    EXPECT_EQ(run({"confirm"}).status, 64);
    EXPECT_EQ(run({"import"}).status, 64);
}

TEST_F(PlixctlConfirm, ExportWritesEveryReadableValueWithItsTypeAndNamesThePasswords)
{
    const auto exported = run({"export", dir().file("backup.json")});
    EXPECT_EQ(exported.status, 0) << exported.err;
    const auto document = nlohmann::json::parse(fileText("backup.json"));
    EXPECT_EQ(document["values"]["general/count"], 42);
    EXPECT_EQ(document["values"]["general/ratio"], 2.5);
    EXPECT_EQ(document["values"]["general/label"], "alpha");
    EXPECT_EQ(document["values"]["general/enabled"], true);
    EXPECT_EQ(document["values"]["fixed/serial"], "SN-0001");
    EXPECT_EQ(document["values"]["eth0/ipaddress"], "192.168.0.10");
    EXPECT_FALSE(document["values"].contains("general/secret"));
    EXPECT_NE(std::find(document["not_exported"].begin(), document["not_exported"].end(),
                        "general/secret"),
              document["not_exported"].end());
    EXPECT_EQ(run({"export"}).out, fileText("backup.json"));
}

// The test configuration's general/broken has an action that always fails,
// so it is left out of the document that goes back.
TEST_F(PlixctlConfirm, ExportChangeImportGivesBackTheStoredValues)
{
    const nlohmann::json store = storeJson();
    const nlohmann::json network = nlohmann::json::parse(fileText("network.json"));
    ASSERT_EQ(run({"export", dir().file("backup.json")}).status, 0);
    nlohmann::ordered_json backup = nlohmann::ordered_json::parse(fileText("backup.json"));
    backup["values"].erase("general/broken");
    dir().write("backup.json", backup.dump());
    ASSERT_EQ(
        run({"set", "general/label=beta", "general/count=7", "eth0/ipaddress=10.0.0.9"}).status, 0);
    const auto imported = run({"import", dir().file("backup.json")});
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(storeJson(), store);
    EXPECT_EQ(nlohmann::json::parse(fileText("network.json")), network);
}

TEST_F(PlixctlConfirm, ImportNamesUndeclaredAndChangedReadOnlyValuesAndSendsNothing)
{
    dir().write("backup.json", R"({"values": {"general/label": "beta", "general/nothing": 1,
                                              "fixed/serial": "SN-9999"}, "not_exported": []})");
    const auto imported = run({"import", dir().file("backup.json")});
    EXPECT_EQ(imported.status, 4);
    EXPECT_NE(imported.err.find("general/nothing: "), std::string::npos) << imported.err;
    EXPECT_NE(imported.err.find("fixed/serial: "), std::string::npos) << imported.err;
    EXPECT_EQ(storeJson()["general"]["label"], "alpha");
}

TEST_F(PlixctlConfirm, ImportWithConfirmAwaitsTheConfirmation)
{
    dir().write("backup.json", R"({"values": {"general/label": "beta", "general/count": 8}})");
    const auto imported = run({"import", "--confirm", "60", dir().file("backup.json")});
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_TRUE(std::regex_match(run({"pending"}).out,
                                 std::regex("pending: \\d+ seconds left: general/label "
                                            "general/count\n")));
    EXPECT_EQ(run({"cancel", tokenIn(imported.out)}).status, 0);
    EXPECT_EQ(storeJson()["general"]["count"], 42);
}

// The example configuration as a device has it, its paths moved into the
// test directory, on a service of its own.
TEST_F(PlixctlConfirm, ExportChangeImportOnTheExampleConfigurationGivesBackItsStoreFiles)
{
    ASSERT_EQ(::kill(servicePid(), SIGKILL), 0);
    const std::vector<std::string> stores{"network.json", "ports.json", "remoteaccess.json",
                                          "panel.json", "factory.json"};
    dir().makeDirectory("example");
    dir().makeDirectory("example/run");
    for (const std::string& name : stores) {
        dir().write("example/" + name,
                    PlixTestDir::readFile(std::string(PLIX_EXAMPLES_DIR) + "/" + name));
    }
    std::string xml = PlixTestDir::readFile(std::string(PLIX_EXAMPLES_DIR) + "/plix_config.xml");
    for (const auto& [from, to] :
         {std::pair<std::string, std::string>{"/etc/orvanta/plix/", "@DIR@/example/"},
          {"/run/orvanta/", "@DIR@/example/run/"}}) {
        for (auto at = xml.find(from); at != std::string::npos; at = xml.find(from, at)) {
            xml.replace(at, from.size(), to);
        }
    }
    PlixServiceProcess& example = start({"-c", writeXml("example.xml", xml)},
                                        {{"PLIX_TEST_PRELOAD", PLIX_FAKE_SYSCONFIG},
                                         {"PLIX_FAKE_SYSCONFIG_LOG", dir().file("sysconfig.log")},
                                         {"PLIX_FAKE_IPCONFIG_ANSWER", "1"}},
                                        "example");
    ASSERT_TRUE(waitServing(example)) << tail(example);
    std::map<std::string, nlohmann::json> before;
    for (const std::string& name : stores) {
        before[name] = nlohmann::json::parse(fileText("example/" + name));
    }
    const auto exported = run({"export", dir().file("backup.json")});
    ASSERT_EQ(exported.status, 0) << exported.err;
    const auto changed = run({"set", "ports/mainport=5800", "station/name=Lab-Panel-08",
                              "display/brightness=20", "eth0/ipaddress=192.168.0.77"});
    ASSERT_EQ(changed.status, 0) << changed.err;
    EXPECT_NE(nlohmann::json::parse(fileText("example/ports.json")), before["ports.json"]);
    const auto imported = run({"import", dir().file("backup.json")});
    EXPECT_EQ(imported.status, 0) << imported.err;
    for (const std::string& name : stores) {
        EXPECT_EQ(nlohmann::json::parse(fileText("example/" + name)), before[name]) << name;
    }
}
