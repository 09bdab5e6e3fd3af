// A store file that is a symbolic link, as on a device whose root file
// system is read-only and whose /etc links into a writable data partition.
// The directory of every link is read-only inside the service's namespaces,
// so a commit survives a restart only if the link's target was rewritten.
#include "PlixIntegrationTest.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>

namespace {
const char* const kCounterId = "load/counter";
const int kCommitted = 4711;
} // namespace

class StoreLinkTest : public PlixIntegrationTest
{
protected:
    void link(const std::string& target, const std::string& name)
    {
        std::filesystem::create_symlink(target, dir().file(name));
    }

    PlixServiceProcess& startOn(const std::string& xml, const std::string& readOnly,
                                const std::string& name)
    {
        return start({"-c", xml}, {{"PLIX_TEST_READONLY", readOnly}}, name);
    }

    // A persistent commit, a restart and the committed value read back.
    void commitRestartAndReadBack(const std::string& xml, const std::string& readOnly)
    {
        PlixServiceProcess& first = startOn(xml, readOnly, "first");
        ASSERT_TRUE(waitServing(first)) << tail(first);
        PlixBusClient& client = newClient();
        ASSERT_EQ(client.transactionStart(true), 0);
        ASSERT_EQ(client.setInt(kCounterId, kCommitted), 0);
        ASSERT_EQ(client.transactionStop(), 0);
        ASSERT_EQ(kill(servicePid(), SIGTERM), 0);
        ASSERT_EQ(first.waitExit(kExitBound), 0) << tail(first);

        PlixServiceProcess& second = startOn(xml, readOnly, "second");
        ASSERT_TRUE(waitServing(second)) << tail(second);
        EXPECT_EQ(newClient().getIntTransient(kCounterId).value, kCommitted);
        const auto stored = nlohmann::json::parse(fileText("data/store.json"), nullptr, false);
        EXPECT_EQ(stored["load"]["counter"], kCommitted);
    }

    bool isLinkTo(const std::string& name, const std::string& target)
    {
        std::error_code failed;
        return std::filesystem::read_symlink(dir().file(name), failed) == target;
    }
};

TEST_F(StoreLinkTest, CommitToALinkInAReadOnlyDirectoryRewritesItsTarget)
{
    const std::string xml = writeLinkedConfig();
    link("../data/store.json", "etc/store.json");
    commitRestartAndReadBack(xml, dir().file("etc"));
    EXPECT_TRUE(isLinkTo("etc/store.json", "../data/store.json"));
}

TEST_F(StoreLinkTest, CommitToAChainOfTwoLinksInReadOnlyDirectoriesRewritesTheLastTarget)
{
    const std::string xml = writeLinkedConfig();
    dir().makeDirectory("mid");
    link(dir().file("mid/store.json"), "etc/store.json");
    link("../data/store.json", "mid/store.json");
    commitRestartAndReadBack(xml, dir().file("etc") + " " + dir().file("mid"));
    EXPECT_TRUE(isLinkTo("etc/store.json", dir().file("mid/store.json")));
    EXPECT_TRUE(isLinkTo("mid/store.json", "../data/store.json"));
}

TEST_F(StoreLinkTest, CommitToALinkInAWritableDirectoryKeepsTheLink)
{
    const std::string xml = writeLinkedConfig();
    link("../data/store.json", "etc/store.json");
    commitRestartAndReadBack(xml, "");
    EXPECT_TRUE(isLinkTo("etc/store.json", "../data/store.json"));
}
