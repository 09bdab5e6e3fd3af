#include "PlixEngineFixture.h"

#include <fstream>
#include <sstream>
#include <sys/stat.h>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

// The example configuration names its files by their installed location;
// the copies used here live in the test's directory instead.
class PlixExampleTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        ASSERT_EQ(mkdir(path("run").c_str(), 0700), 0);
        for (const char* name : {"plix_config.xml", "network.json", "ports.json",
                                 "remoteaccess.json", "panel.json", "factory.json"}) {
            copyExample(name);
        }
        configureWith({"-s", "-c", path("plix_config.xml")});
    }

    void copyExample(const std::string& name)
    {
        std::ifstream in(std::string(PLIX_EXAMPLES_DIR) + "/" + name, std::ios::binary);
        ASSERT_TRUE(in.good()) << name;
        std::ostringstream text;
        text << in.rdbuf();
        std::string content = text.str();
        replaceAll(content, "/etc/orvanta/plix/", dir + "/");
        replaceAll(content, "/run/orvanta/", dir + "/run/");
        std::ofstream(path(name), std::ios::binary) << content;
    }

    static void replaceAll(std::string& text, const std::string& from, const std::string& to)
    {
        for (std::size_t at = text.find(from); at != std::string::npos;
             at = text.find(from, at + to.size())) {
            text.replace(at, from.size(), to);
        }
    }

    void start() { ASSERT_EQ(engine->transactionStart(":1.42", true), 0); }
    int stop() { return engine->transactionStop(":1.42"); }

    std::string storedString(const std::string& xml_id)
    {
        std::string value;
        EXPECT_EQ(engine->getStringValueTransient("t", xml_id, value), 0);
        return value;
    }

    int storedInt(const std::string& xml_id)
    {
        int value = -1;
        EXPECT_EQ(engine->getIntValueTransient("t", xml_id, value), 0);
        return value;
    }

    static std::vector<std::string> keysOf(const nlohmann::ordered_json& object)
    {
        std::vector<std::string> keys;
        for (const auto& member : object.items()) {
            keys.push_back(member.key());
        }
        return keys;
    }
};

} // namespace

TEST_F(PlixExampleTest, StartUpPassAppliesStoredSettings)
{
    EXPECT_EQ(readFile("run/brightness"), "80\n");
    EXPECT_FALSE(exists("run/language"));
    EXPECT_THAT(readFile("killall.log"), HasSubstr("-SIGKILL udhcpc"));
}

TEST_F(PlixExampleTest, EveryDeclaredKindIsReadable)
{
    bool dhcp = true;
    EXPECT_EQ(engine->getBoolValueTransient("t", "eth0/dhcp", dhcp), 0);
    EXPECT_FALSE(dhcp);
    EXPECT_EQ(storedString("eth0/ipaddress"), "192.168.0.10");
    EXPECT_EQ(storedString("eth0/gateway"), "192.168.0.1");
    EXPECT_EQ(storedInt("ports/mainport"), 102);
    EXPECT_EQ(storedInt("system/maxclients"), 4);
    EXPECT_EQ(storedString("system/vendor"), "Orvanta");
    EXPECT_EQ(storedString("factory/serialnumber"), "OV-2024-000117");
    EXPECT_EQ(storedString("station/name"), "Orvanta-Panel-01");
    EXPECT_EQ(storedString("webui/title"), "Orvanta-Panel-01");
}

TEST_F(PlixExampleTest, StoredPasswordsVerifyAgainstDocumentedPlainTexts)
{
    start();
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/accesscontrolPassword1", std::string("secret1")), 0);
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/accesscontrolPassword2", std::string("secret2")), 0);
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/forcedwriteaccessPassword", std::string("secret3")),
        0);
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/accesscontrolPassword1", std::string("secret2")),
        201);
    EXPECT_EQ(stop(), 0);
}

TEST_F(PlixExampleTest, PersistentCommitRewritesChangedFilesKeepingMemberOrder)
{
    const std::string factoryBefore = readFile("factory.json");
    const std::string remoteBefore = readFile("remoteaccess.json");
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "eth0/ipaddress", "192.168.0.20"), 0);
    EXPECT_EQ(engine->setIntValue(":1.42", "ports/httpport", 8080), 0);
    EXPECT_EQ(engine->setStringValue(":1.42", "webui/title", "Panel-Lab"), 0);
    EXPECT_EQ(engine->setIntValue(":1.42", "display/brightness", 60), 0);
    EXPECT_EQ(stop(), 0);

    const auto network = readJson("network.json");
    EXPECT_EQ(network["network"]["eth0"]["ipaddress"], "192.168.0.20");
    EXPECT_THAT(keysOf(network["network"]["eth0"]),
                ElementsAre("dhcp", "ipaddress", "subnetmask", "gateway"));
    const auto ports = readJson("ports.json");
    EXPECT_EQ(ports["ports"]["httpport"], 8080);
    EXPECT_THAT(keysOf(ports["ports"]), ElementsAre("mainport", "displayport", "httpport"));
    const auto panel = readJson("panel.json");
    EXPECT_EQ(panel["panel"]["stationname"], "Panel-Lab");
    EXPECT_EQ(panel["panel"]["display"]["brightness"], 60);
    EXPECT_EQ(storedString("station/name"), "Panel-Lab");
    EXPECT_EQ(readFile("run/brightness"), "60\n");
    EXPECT_EQ(readFile("factory.json"), factoryBefore);
    EXPECT_EQ(readFile("remoteaccess.json"), remoteBefore);
}

TEST_F(PlixExampleTest, PortClashIsRefusedAtCommit)
{
    start();
    EXPECT_EQ(engine->setIntValue(":1.42", "ports/mainport", 80), 0);
    EXPECT_EQ(stop(), 203);
    EXPECT_EQ(storedInt("ports/mainport"), 102);
    EXPECT_EQ(readJson("ports.json")["ports"]["mainport"], 102);
}

TEST_F(PlixExampleTest, PortOutOfRangeIsRefusedAtSet)
{
    start();
    EXPECT_EQ(engine->setIntValue(":1.42", "ports/httpport", 70000), 200);
    EXPECT_EQ(stop(), 4);
}

TEST_F(PlixExampleTest, EmptyAccessPasswordIsRefusedByPolicy)
{
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "remoteaccess/accesscontrolPassword2", ""), 0);
    EXPECT_EQ(stop(), 206);
    start();
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/accesscontrolPassword2", std::string("secret2")), 0);
}

TEST_F(PlixExampleTest, NewPasswordIsStoredHashedAndVerifies)
{
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "remoteaccess/accesscontrolPassword1", "changed"), 0);
    EXPECT_EQ(stop(), 0);
    const std::string stored =
        readJson("remoteaccess.json")["remoteaccess"]["accesscontrolPassword1"];
    EXPECT_EQ(stored.find("changed"), std::string::npos);
    start();
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/accesscontrolPassword1", std::string("changed")), 0);
    EXPECT_EQ(
        engine->verify(":1.42", "remoteaccess/accesscontrolPassword1", std::string("secret1")),
        201);
}

TEST_F(PlixExampleTest, SecondConnectionPriorityOptionIsRefused)
{
    start();
    EXPECT_EQ(engine->setBoolValue(":1.42", "connectionpriority/refuseconcurrentconnections", true),
              0);
    EXPECT_EQ(stop(), 207);
}

TEST_F(PlixExampleTest, FactoryDataIsReadOnly)
{
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "factory/serialnumber", "forged"), 15);
    EXPECT_EQ(stop(), 4);
}

TEST_F(PlixExampleTest, OverlongStationNameIsRefusedAtSet)
{
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "station/name", std::string(64, 'x')), 205);
}

TEST_F(PlixExampleTest, LanguageIsCheckedAndWrittenToItsFile)
{
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "display/language", "es"), 200);
    start();
    EXPECT_EQ(engine->setStringValue(":1.42", "display/language", "de"), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(readFile("run/language"), "de");
}

TEST_F(PlixExampleTest, TransientBrightnessIsAppliedButNotStored)
{
    EXPECT_EQ(engine->setIntValueTransient(":1.7", "display/brightness", 20), 0);
    EXPECT_EQ(readFile("run/brightness"), "20\n");
    EXPECT_EQ(readJson("panel.json")["panel"]["display"]["brightness"], 80);
}
