#include "PlixOutputLines.h"
#include "PlixServingTest.h"
#include "PlixTestPaths.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>

namespace {
std::string outputOf(const std::string& command)
{
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return output;
    }
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) {
        output += buffer;
    }
    pclose(pipe);
    return output;
}
} // namespace

using ProcessLife = PlixServingTest;

TEST_F(ProcessLife, LosingTheNameToAReplacingOwnerEnds2)
{
    EXPECT_EQ(newClient().requestNameReplacing(PlixBusClient::kServiceName),
              PlixBusClient::kPrimaryOwner);
    EXPECT_EQ(service().waitExit(kExitBound), 2);
    EXPECT_EQ(plixLastLines(lines(), 1),
              std::vector<std::string>{"[ERR] Could not register servicename on bus"});
}

TEST_F(ProcessLife, QuitAnswersEmptyAndChangesNothing)
{
    std::string error;
    PlixGVariantPtr reply = client().call(PlixBusClient::kServiceName, "/ctrl", "com.orvanta.dbus",
                                          "Quit", nullptr, &error);
    ASSERT_TRUE(reply) << error;
    EXPECT_STREQ(g_variant_get_type_string(reply.get()), "()");
    EXPECT_TRUE(plixLinesAdjacent(lines(), {"[NFO] Quit() Method invoked by DBus", ""}));
    EXPECT_TRUE(service().running());
    EXPECT_EQ(client().getIntTransient("general/count").value, 42);
    EXPECT_EQ(client().transactionStart(true), 0);
}

TEST_F(ProcessLife, InitAnswersEmptyAndChangesNothing)
{
    ASSERT_EQ(client().setIntTransient("general/count", 9), 0);
    std::string error;
    PlixGVariantPtr reply = client().call(PlixBusClient::kServiceName, "/ctrl", "com.orvanta.dbus",
                                          "Init", nullptr, &error);
    ASSERT_TRUE(reply) << error;
    EXPECT_STREQ(g_variant_get_type_string(reply.get()), "()");
    EXPECT_TRUE(plixLinesAdjacent(lines(), {"[NFO] Init() Method invoked by DBus", ""}));
    // Init re-reads nothing: the transient value stays.
    EXPECT_EQ(client().getIntTransient("general/count").value, 9);
}

TEST_F(ProcessLife, SigtermEnds0WithAllOutputWritten)
{
    client().getIntTransient("general/label");
    ASSERT_EQ(kill(servicePid(), SIGTERM), 0);
    EXPECT_EQ(service().waitExit(kExitBound), 0);
    EXPECT_TRUE(plixLinesAdjacent(lines(), {"[NOT] getIntValueTransient client: " +
                                                client().uniqueName() + " xml_id: general/label",
                                            "[NOT] Requested wrong datatype for general/label"}));
}

TEST(ServiceExecutable, LinksTheSystemConfigurationLibraryDynamically)
{
    if (access(PLIX_SERVICE_BINARY, X_OK) != 0) {
        GTEST_SKIP() << "the service is not built: " << PLIX_SERVICE_BINARY;
    }
    EXPECT_NE(outputOf(std::string("ldd ") + PLIX_SERVICE_BINARY).find("libsysconfig.so.1 => "),
              std::string::npos);
}
