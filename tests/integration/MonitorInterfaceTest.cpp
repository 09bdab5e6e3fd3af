#include "PlixMonitorCalls.h"
#include "PlixOutputLines.h"
#include "PlixServingTest.h"

using Pairs = std::vector<std::pair<std::string, std::string>>;

class MonitorInterface : public PlixServingTest
{
protected:
    PlixMonitorCalls monitor() { return PlixMonitorCalls(client()); }
};

TEST_F(MonitorInterface, ListValuesGivesEveryValueInXmlOrderWithTypeFileAndAccess)
{
    using Listed = PlixMonitorCalls::Listed;
    const std::vector<Listed> expected{{"general/count", "int", "store", false},
                                       {"general/ratio", "double", "store", false},
                                       {"general/label", "string", "store", false},
                                       {"general/enabled", "bool", "store", false},
                                       {"general/mode", "int", "store", false},
                                       {"general/secret", "password,sha256,1000", "store", false},
                                       {"general/marker", "string", "store", false},
                                       {"general/broken", "string", "store", false},
                                       {"ports/mainport", "int", "store", false},
                                       {"ports/displayport", "int", "store", false},
                                       {"ports/httpport", "int", "store", false},
                                       {"fixed/serial", "string", "fixed", true},
                                       {"eth0/dhcp", "bool", "network", false},
                                       {"eth0/ipaddress", "string", "network", false},
                                       {"eth0/subnetmask", "string", "network", false},
                                       {"eth0/gateway", "string", "network", false},
                                       {"startup/greeting", "string", "store", false},
                                       {"load/constant", "int", "store", false},
                                       {"load/counter", "int", "store", false}};
    EXPECT_EQ(monitor().listValues(), expected);
}

TEST_F(MonitorInterface, GetValuesReadsManyValuesInTheOrderAsked)
{
    const auto read = monitor().getValues(
        {"general/label", "general/count", "general/enabled", "general/ratio", "fixed/serial"});
    EXPECT_EQ(read.status, 0);
    EXPECT_EQ(read.values, (Pairs{{"general/label", "'alpha'"},
                                  {"general/count", "42"},
                                  {"general/enabled", "true"},
                                  {"general/ratio", "2.5"},
                                  {"fixed/serial", "'SN-0001'"}}));
}

TEST_F(MonitorInterface, GetValuesLogsLikeTheTransientGetters)
{
    ASSERT_EQ(monitor().getValues({"general/count", "general/label"}).status, 0);
    syncOutput();
    EXPECT_TRUE(plixLinesAdjacent(
        lines(),
        {"[NOT] getIntValueTransient client: " + client().uniqueName() + " xml_id: general/count",
         "[NOT] getStringValueTransient client: " + client().uniqueName() +
             " xml_id: general/label"}));
}

TEST_F(MonitorInterface, GetValuesOfAnUndeclaredIdAnswers9AndNoValues)
{
    const auto read = monitor().getValues({"general/count", "general/nothing"});
    EXPECT_EQ(read.status, 9);
    EXPECT_TRUE(read.values.empty());
}

TEST_F(MonitorInterface, GetValuesOfAPasswordAnswers11AndNoValues)
{
    const auto read = monitor().getValues({"general/count", "general/secret"});
    EXPECT_EQ(read.status, 11);
    EXPECT_TRUE(read.values.empty());
    syncOutput();
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Requested wrong datatype for general/secret"));
}

TEST_F(MonitorInterface, GetValuesOfNothingAnswers0AndNoValues)
{
    const auto read = monitor().getValues({});
    EXPECT_EQ(read.status, 0);
    EXPECT_TRUE(read.values.empty());
}

TEST_F(MonitorInterface, GetValuesDuringAnotherClientsTransactionGivesTheCommittedValue)
{
    PlixBusClient& holder = newClient();
    ASSERT_EQ(holder.transactionStart(true), 0);
    ASSERT_EQ(holder.setInt("general/count", 7), 0);
    EXPECT_EQ(monitor().getValues({"general/count"}).values, (Pairs{{"general/count", "42"}}));
    EXPECT_EQ(holder.transactionStop(), 0);
}

TEST_F(MonitorInterface, ApplyCommitsEveryChangeAndRewritesTheStore)
{
    const auto applied = monitor().apply({{"general/count", g_variant_new_int32(7)},
                                          {"general/ratio", g_variant_new_double(0.5)},
                                          {"general/label", g_variant_new_string("beta")},
                                          {"general/enabled", g_variant_new_boolean(FALSE)}},
                                         true);
    EXPECT_EQ(applied.status, 0);
    EXPECT_EQ(applied.failedId, "");
    const auto store = storeJson();
    EXPECT_EQ(store["general"]["count"], 7);
    EXPECT_EQ(store["general"]["ratio"], 0.5);
    EXPECT_EQ(store["general"]["label"], "beta");
    EXPECT_EQ(store["general"]["enabled"], false);
}

TEST_F(MonitorInterface, ApplyNotPersistentKeepsTheStoreAsItWas)
{
    const std::string before = storeText();
    EXPECT_EQ(monitor().apply({{"general/count", g_variant_new_int32(7)}}, false).status, 0);
    EXPECT_EQ(client().getIntTransient("general/count").value, 7);
    EXPECT_EQ(storeText(), before);
}

TEST_F(MonitorInterface, ApplyRunsTheEnginesOwnTransaction)
{
    ASSERT_EQ(monitor().apply({{"general/count", g_variant_new_int32(7)}}, false).status, 0);
    const std::string name = client().uniqueName();
    EXPECT_TRUE(plixLinesAdjacent(
        lines(), {"[NOT] transactionStart client: " + name + " persistent: false",
                  "[NFO] Service registered!",
                  "[NOT] setValue client: " + name + " xml_id: general/count value: 7",
                  "[NOT] transactionStop client: " + name + " ",
                  "[NOT] Clearing PLIX to be ready for new transactions"}));
}

TEST_F(MonitorInterface, ApplyWhileAnotherClientHoldsATransactionAnswers8)
{
    PlixBusClient& holder = newClient();
    ASSERT_EQ(holder.transactionStart(true), 0);
    const auto applied = monitor().apply({{"general/count", g_variant_new_int32(7)}}, true);
    EXPECT_EQ(applied.status, 8);
    EXPECT_EQ(applied.failedId, "");
    EXPECT_EQ(holder.setInt("general/count", 9), 0);
    EXPECT_EQ(holder.transactionStop(), 0);
    EXPECT_EQ(client().getIntTransient("general/count").value, 9);
}

TEST_F(MonitorInterface, ApplyWithAnUnsupportedVariantTypeAnswers11BeforeAnythingIsSet)
{
    const auto applied = monitor().apply(
        {{"general/count", g_variant_new_int32(7)}, {"general/label", g_variant_new_uint32(3)}},
        true);
    EXPECT_EQ(applied.status, 11);
    EXPECT_EQ(applied.failedId, "general/label");
    syncOutput();
    EXPECT_FALSE(plixAnyLineContains(lines(), "transactionStart client: " + client().uniqueName()));
    EXPECT_EQ(client().getIntTransient("general/count").value, 42);
}

TEST_F(MonitorInterface, ApplyOfAnUndeclaredIdAnswers9AndNamesIt)
{
    const auto applied = monitor().apply(
        {{"general/count", g_variant_new_int32(7)}, {"general/nothing", g_variant_new_int32(1)}},
        true);
    EXPECT_EQ(applied.status, 9);
    EXPECT_EQ(applied.failedId, "general/nothing");
    EXPECT_EQ(client().getIntTransient("general/count").value, 42);
    EXPECT_EQ(client().transactionStart(true), 0);
}

TEST_F(MonitorInterface, ApplyToAReadOnlyValueAnswers15)
{
    const auto applied = monitor().apply({{"fixed/serial", g_variant_new_string("SN-9")}}, true);
    EXPECT_EQ(applied.status, 15);
    EXPECT_EQ(applied.failedId, "fixed/serial");
}

TEST_F(MonitorInterface, ApplyWithAFailingCommitNamesNoValue)
{
    const auto applied = monitor().apply({{"ports/httpport", g_variant_new_int32(5900)}}, true);
    EXPECT_EQ(applied.status, 203);
    EXPECT_EQ(applied.failedId, "");
    EXPECT_EQ(client().getIntTransient("ports/httpport").value, 80);
}

TEST_F(MonitorInterface, ApplyOfNothingAnswers0)
{
    const auto applied = monitor().apply({}, true);
    EXPECT_EQ(applied.status, 0);
    EXPECT_EQ(applied.failedId, "");
}

TEST_F(MonitorInterface, ApplySetsAPasswordFromItsPlainText)
{
    ASSERT_EQ(monitor().apply({{"general/secret", g_variant_new_string("s3cret")}}, true).status,
              0);
    EXPECT_NE(storeJson()["general"]["secret"], "s3cret");
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("s3cret"), "general/secret"), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("other"), "general/secret"), 201);
    EXPECT_EQ(client().transactionStop(), 0);
    syncOutput();
    EXPECT_FALSE(plixAnyLineContains(lines(), "s3cret"));
}
