#include "PlixctlFixture.h"

using plixctltest::kRunBound;

TEST_F(Plixctl, ListPrintsTheTableOfValues)
{
    const auto result = run({"list"});
    EXPECT_EQ(result.status, 0);
    const auto lines = PlixTestDir::splitLines(result.out);
    ASSERT_EQ(lines.size(), 20u);
    EXPECT_EQ(lines[0], "ID                 TYPE                  FILE     ACCESS");
    EXPECT_EQ(lines[1], "general/count      int                   store    read-write");
    EXPECT_EQ(lines[6], "general/secret     password,sha256,1000  store    read-write");
    EXPECT_EQ(lines[12], "fixed/serial       string                fixed    read-only");
}

TEST_F(Plixctl, ListAsJson)
{
    const auto result = run({"--json", "list"});
    EXPECT_EQ(result.status, 0);
    const auto list = nlohmann::json::parse(result.out);
    ASSERT_EQ(list.size(), 19u);
    EXPECT_EQ(
        list[11],
        (nlohmann::json{
            {"id", "fixed/serial"}, {"type", "string"}, {"file", "fixed"}, {"read_only", true}}));
}

TEST_F(Plixctl, GetPrintsEachValue)
{
    const auto result =
        run({"get", "general/count", "general/ratio", "general/label", "general/enabled"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "general/count=42\ngeneral/ratio=2.5\ngeneral/label=alpha\ngeneral/enabled=true\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(Plixctl, GetAsJsonKeepsTheOrderAndTheTypes)
{
    const auto result = run({"get", "--json", "general/label", "general/count", "general/enabled"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "{\"general/label\":\"alpha\",\"general/count\":42,"
                          "\"general/enabled\":true}\n");
}

TEST_F(Plixctl, GetOfAnUndeclaredIdExits4)
{
    const auto result = run({"get", "general/nothing"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "plixctl: general/nothing: the XML-ID is not declared (code 9)\n");
}

TEST_F(Plixctl, GetOfAPasswordExits5)
{
    const auto result = run({"get", "general/secret"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.err, "plixctl: general/secret: the requested type differs from the "
                          "value's type (code 11)\n");
}

TEST_F(Plixctl, SetCommitsAndStoresEveryValueByItsType)
{
    const auto result = run({"set", "general/count=7", "general/ratio=0.25", "general/label=beta",
                             "general/enabled=false"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "committed: 4 values\n");
    const auto store = storeJson();
    EXPECT_EQ(store["general"]["count"], 7);
    EXPECT_EQ(store["general"]["ratio"], 0.25);
    EXPECT_EQ(store["general"]["label"], "beta");
    EXPECT_EQ(store["general"]["enabled"], false);
}

TEST_F(Plixctl, SetNoPersistKeepsTheStore)
{
    const std::string before = storeText();
    const auto result = run({"set", "--no-persist", "general/count=7"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "applied, not stored: 1 value\n");
    EXPECT_EQ(storeText(), before);
    EXPECT_EQ(client().getIntTransient("general/count").value, 7);
}

TEST_F(Plixctl, SetTransientUsesTheTransientSetters)
{
    const auto result = run({"set", "--transient", "general/count=8", "general/label=gamma"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "applied transiently: 2 values\n");
    EXPECT_EQ(client().getIntTransient("general/count").value, 8);
    EXPECT_EQ(client().getStringTransient("general/label").value, "gamma");
    syncOutput();
    EXPECT_TRUE(plixAnyLineContains(lines(), "setValueTransient client: "));
}

TEST_F(Plixctl, SetAsJsonReportsTheResult)
{
    const auto result = run({"--json", "set", "general/count=7"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "{\"status\":0,\"ids\":[\"general/count\"],\"mode\":\"committed\"}\n");
}

TEST_F(Plixctl, SetRefusedByTheCommitExits5AndReportsTheCode)
{
    const auto result = run({"set", "ports/httpport=5900"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "plixctl: the main port equals the HTTP port (code 203)\n");
    EXPECT_EQ(client().getIntTransient("ports/httpport").value, 80);
}

TEST_F(Plixctl, SetOfAReadOnlyValueExits6)
{
    const auto result = run({"set", "fixed/serial=SN-9"});
    EXPECT_EQ(result.status, 6);
    EXPECT_EQ(result.err, "plixctl: fixed/serial: the value lives in a read-only file (code 15)\n");
}

TEST_F(Plixctl, SetOfAnUndeclaredIdExits4)
{
    const auto result = run({"set", "general/nothing=1"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.err, "plixctl: general/nothing: the XML-ID is not declared (code 9)\n");
}

TEST_F(Plixctl, SetWithAFailingActionExits7)
{
    const auto result = run({"set", "general/broken=x"});
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.err, "plixctl: a change action could not open its file (code 10)\n");
}

TEST_F(Plixctl, SetOfTextThatIsNoNumberExits5WithoutCallingTheService)
{
    const auto result = run({"set", "general/count=seven"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.err, "plixctl: general/count: 'seven' is not a valid int\n");
    syncOutput();
    EXPECT_FALSE(plixAnyLineContains(lines(), "transactionStart client:"));
}

TEST_F(Plixctl, SetWhileAnotherClientHoldsATransactionExits3)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    const auto result = run({"set", "general/count=7"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.err, "plixctl: busy: another transaction is open (code 8)\n");
    EXPECT_EQ(client().transactionStop(), 0);
}

TEST_F(Plixctl, SetAPasswordFromStandardInputAndVerifyIt)
{
    const auto set = runWithInput({"set", "general/secret=-"}, "s3cret\n");
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.out, "committed: 1 value\n");
    const auto match = runWithInput({"verify", "general/secret", "-"}, "s3cret\n");
    EXPECT_EQ(match.status, 0);
    EXPECT_EQ(match.out, "match\n");
    const auto mismatch = runWithInput({"verify", "general/secret", "-"}, "other\n");
    EXPECT_EQ(mismatch.status, 1);
    EXPECT_EQ(mismatch.err, "plixctl: general/secret: verify: the candidate differs (code 201)\n");
    syncOutput();
    EXPECT_FALSE(plixAnyLineContains(lines(), "s3cret"));
}

TEST_F(Plixctl, VerifyComparesByTheValuesType)
{
    EXPECT_EQ(run({"verify", "general/count", "42"}).status, 0);
    EXPECT_EQ(run({"verify", "general/ratio", "2.5"}).status, 0);
    EXPECT_EQ(run({"verify", "general/label", "alpha"}).status, 0);
    EXPECT_EQ(run({"verify", "general/count", "41"}).status, 1);
}

TEST_F(Plixctl, VerifyAsJson)
{
    const auto result = run({"--json", "verify", "general/count", "42"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "{\"id\":\"general/count\",\"status\":0,\"match\":true}\n");
}

TEST_F(Plixctl, VerifyOfAnUndeclaredIdExits4)
{
    const auto result = run({"verify", "general/nothing", "1"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(client().transactionStart(true), 0);
}

TEST_F(Plixctl, MonitorPrintsEachChangeUntilInterrupted)
{
    auto monitor = startMonitor({"monitor"});
    ASSERT_EQ(client().setIntTransient("general/count", 7), 0);
    ASSERT_TRUE(waitMonitorOutput("general/count=7\n"));
    ASSERT_EQ(client().setStringTransient("general/secret", "s3cret"), 0);
    ASSERT_EQ(run({"set", "general/label=beta", "general/ratio=1.5"}).status, 0);
    ASSERT_TRUE(waitMonitorOutput(
        "general/count=7\ngeneral/secret=(password)\ngeneral/label=beta\ngeneral/ratio=1.5\n"));
    monitor->sendSignal(SIGINT);
    EXPECT_EQ(monitor->waitExit(kRunBound), 0);
}

TEST_F(Plixctl, MonitorAsJsonEndsOnSigterm)
{
    auto monitor = startMonitor({"--json", "monitor"});
    ASSERT_EQ(client().transactionStart(false), 0);
    ASSERT_EQ(client().setBool("general/enabled", false), 0);
    ASSERT_EQ(client().transactionStop(), 0);
    ASSERT_TRUE(
        waitMonitorOutput("{\"id\":\"general/enabled\",\"value\":false,\"persistent\":false}\n"));
    monitor->sendSignal(SIGTERM);
    EXPECT_EQ(monitor->waitExit(kRunBound), 0);
}

TEST_F(Plixctl, NoServiceOnTheBusExits2)
{
    const auto result = run({"--address", "unix:path=" + dir().file("no-bus"), "list"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.rfind("plixctl: cannot reach com.orvanta.plix: ", 0), 0u) << result.err;
}

TEST_F(Plixctl, UsageErrorExits64)
{
    const auto result = run({"frobnicate"});
    EXPECT_EQ(result.status, 64);
    EXPECT_EQ(result.err, "plixctl: unknown command 'frobnicate'\nTry 'plixctl --help'.\n");
}

TEST_F(Plixctl, SetWhoseStoreFileCannotBeWrittenExits9NamingTheFileAndTheError)
{
    const std::string store = blockStoreFile();
    const auto result = run({"set", "general/count=7"});
    EXPECT_EQ(result.status, 9);
    EXPECT_EQ(result.out, "applied, but not stored: " + store + ": Is a directory\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(client().getIntTransient("general/count").value, 7);
}

TEST_F(Plixctl, StatusWithEveryStoreFileWrittenExits0)
{
    ASSERT_EQ(run({"set", "general/count=7"}).status, 0);
    const auto result = run({"status"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "all store files written\n");
}

TEST_F(Plixctl, StatusListsTheStoreFileThatCouldNotBeWrittenAndExits9)
{
    const std::string store = blockStoreFile();
    ASSERT_EQ(run({"set", "general/count=7"}).status, 9);
    const auto result = run({"status"});
    EXPECT_EQ(result.status, 9);
    EXPECT_EQ(result.out, "not stored: " + store + ": Is a directory\n");
}

TEST_F(Plixctl, HelpShowsTheExitStatusTable)
{
    const auto result = run({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("  4   the XML-ID is not declared (code 9)\n"), std::string::npos);
}
