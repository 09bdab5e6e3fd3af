#include "PlixIntegrationTest.h"
#include "PlixTestSyslog.h"
#include "PlixWait.h"

#include <syslog.h>

#include <algorithm>
#include <optional>

namespace {
bool endedWith(const std::vector<std::pair<pid_t, int>>& ended, int status)
{
    return std::any_of(ended.begin(), ended.end(),
                       [&](const auto& process) { return process.second == status; });
}

std::optional<int> statusOf(const std::vector<std::pair<pid_t, int>>& ended, pid_t pid)
{
    const auto process = std::find_if(ended.begin(), ended.end(),
                                      [&](const auto& entry) { return entry.first == pid; });
    return process == ended.end() ? std::nullopt : std::optional<int>(process->second);
}
} // namespace

using DaemonMode = PlixIntegrationTest;

TEST_F(DaemonMode, ParentEnds0OnlyOncePlixIsExportedAndTheChildServes)
{
    PlixServiceProcess& service = start({"-d", "-c", writeConfig()});
    ASSERT_TRUE(plixWaitUntil([&] { return !service.endedProcesses().empty(); }, kStartBound))
        << tail(service);
    const auto [parent, parentStatus] = service.endedProcesses().front();
    EXPECT_EQ(parentStatus, 0);
    EXPECT_EQ(service.stdoutLines().back(), "[NFO] Exiting parent process");
    // Right at the parent's end the child owns the name and /plix is there.
    EXPECT_NE(bus().nameOwner(PlixBusClient::kServiceName), "");
    EXPECT_NE(newClient().introspect("/plix").find("com.orvanta.plix.dBusAdaptor"),
              std::string::npos);

    ASSERT_TRUE(waitServing(service));
    const pid_t child = namespacePidOf(servicePid());
    EXPECT_NE(child, parent);
    EXPECT_EQ(PlixTestDir::readFile(service.pidFilePath()), std::to_string(child) + "\n");
    EXPECT_EQ(newClient().getIntTransient("general/count").value, 42);
}

TEST_F(DaemonMode, SecondInstanceAsDaemonEndsItsParentWith0AndItsChildWith2)
{
    PlixServiceProcess* first = startServing();
    ASSERT_NE(first, nullptr);
    PlixServiceProcess& second =
        startInside(*first, {"-d", "-c", dir().file("plix_test.xml")}, "second");
    EXPECT_EQ(second.waitExit(kExitBound), 0);
    // The detached child ends in the namespace, where its first process
    // records it.
    EXPECT_TRUE(plixWaitUntil([&] { return endedWith(first->endedProcesses(), 2); }, kExitBound));
    EXPECT_EQ(newClient().getIntTransient("general/count").value, 42);
}

TEST_F(DaemonMode, ChildLosingTheNameAfterStartUpEnds2WithItsErrorLine)
{
    PlixServiceProcess& service =
        start({"-d", "-c", writeConfig()}, {{"PLIX_TEST_PRIVATE_DEV", "yes"}});
    ASSERT_TRUE(waitServing(service)) << tail(service);
    const pid_t child = namespacePidOf(servicePid());
    // A detached daemon writes to the system log only: a logger in the
    // namespace's own /dev, which the daemon finds when it appears.
    PlixTestSyslog logger(service.namespaceRoot() + "/dev/log");
    ASSERT_TRUE(logger.valid());
    logger.startReading();

    EXPECT_EQ(newClient().requestNameReplacing(PlixBusClient::kServiceName),
              PlixBusClient::kPrimaryOwner);
    ASSERT_TRUE(plixWaitUntil([&] { return statusOf(service.endedProcesses(), child).has_value(); },
                              kExitBound));
    EXPECT_EQ(statusOf(service.endedProcesses(), child), 2);
    // Its last message is the one the foreground prints in the same case.
    const std::string nameLost = "Could not register servicename on bus";
    EXPECT_TRUE(plixWaitUntil(
        [&] {
            const auto messages = logger.messages();
            return std::any_of(messages.begin(), messages.end(), [&](const auto& message) {
                return plixParseSyslog(message).text == nameLost;
            });
        },
        kExitBound));
    const auto messages = logger.messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(plixParseSyslog(messages.back()).text, nameLost);
    EXPECT_EQ(plixParseSyslog(messages.back()).priority, LOG_USER | LOG_ERR);
}
