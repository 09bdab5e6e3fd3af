#include "PlixIntegrationTest.h"
#include "PlixOutputLines.h"
#include "PlixTestPaths.h"

#include <sys/stat.h>

using SingleInstance = PlixIntegrationTest;

TEST_F(SingleInstance, PidFileHoldsTheServicesIdWithMode0600)
{
    PlixServiceProcess* service = startServing();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(PlixTestDir::readFile(service->pidFilePath()),
              std::to_string(namespacePidOf(servicePid())) + "\n");
    struct stat info
    {
    };
    ASSERT_EQ(stat(service->pidFilePath().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(SingleInstance, SecondInstanceEnds255AndTheFirstKeepsServing)
{
    PlixServiceProcess* first = startServing();
    ASSERT_NE(first, nullptr);
    const std::string pidFile = PlixTestDir::readFile(first->pidFilePath());
    const std::string owner = bus().nameOwner(PlixBusClient::kServiceName);

    PlixServiceProcess& second = startInside(*first, {"-c", dir().file("plix_test.xml")}, "second");
    EXPECT_EQ(second.waitExit(kExitBound), 255);
    EXPECT_EQ(
        plixLastLines(second.stdoutLines(), 1),
        std::vector<std::string>{"[ERR] Service already started. Shutting down com.orvanta.plix"});
    // The first option pass knows only -d and complains about -c.
    EXPECT_EQ(second.stderrText(), std::string(PLIX_SERVICE_BINARY) +
                                       ": invalid option -- 'c'\n"
                                       "PID-File already locked.\n: Resource temporarily "
                                       "unavailable\n");
    EXPECT_EQ(PlixTestDir::readFile(first->pidFilePath()), pidFile);
    EXPECT_EQ(bus().nameOwner(PlixBusClient::kServiceName), owner);
    EXPECT_EQ(newClient().getIntTransient("general/count").value, 42);
}
