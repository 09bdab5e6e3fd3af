#include "PlixMonitorInterface.h"

#include "DBusInterface.h"
#include "Plix.h"
#include "PrivateBus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
const char* const monitorInterface = "com.orvanta.plix.Monitor";

// Everything a ValuesChanged signal carried.
struct PlixSeenSignal
{
    bool seen = false;
    std::vector<std::string> ids;
    bool persistent = false;
};

void recordSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                  GVariant* parameters, gpointer seen)
{
    auto* signal = static_cast<PlixSeenSignal*>(seen);
    const gchar** ids = nullptr;
    gboolean persistent = FALSE;
    g_variant_get(parameters, "(^a&sb)", &ids, &persistent);
    for (const gchar** id = ids; *id != nullptr; ++id) {
        signal->ids.emplace_back(*id);
    }
    g_free(ids);
    signal->persistent = persistent != FALSE;
    signal->seen = true;
}
} // namespace

// The monitor interface against the engine as it is before any configuration
// file is loaded: no value is declared, one transaction at a time.
class PlixMonitorInterfaceTest : public testing::Test
{
protected:
    // The monitor joins the configuration interface wherever that is
    // exported; it is exported here unless another test of this program has
    // done so already.
    static void SetUpTestSuite()
    {
        auto* adaptor = G_DBUS_INTERFACE_SKELETON(DBusInterface::getInstance()->getAdaptor());
        if (g_dbus_interface_skeleton_get_connection(adaptor) == nullptr) {
            g_dbus_interface_skeleton_export(adaptor, PrivateBus::connect(), "/plix", nullptr);
        }
        PlixMonitorInterface::getInstance()->configure(0, nullptr);
        service = g_dbus_interface_skeleton_get_connection(monitorSkeleton());
        caller = PrivateBus::connect();
    }

    void TearDown() override { Plix::getInstance()->transactionStop(holder); }

    static GDBusInterfaceSkeleton* monitorSkeleton()
    {
        return G_DBUS_INTERFACE_SKELETON(PlixMonitorInterface::getInstance()->getAdaptor());
    }

    static std::string replyText(const char* method, GVariant* arguments)
    {
        std::string error;
        GVariant* reply =
            PrivateBus::call(caller, service, "/plix", monitorInterface, method, arguments, &error);
        if (reply == nullptr) {
            return "error: " + error;
        }
        gchar* printed = g_variant_print(reply, TRUE);
        std::string text = printed;
        g_free(printed);
        g_variant_unref(reply);
        return text;
    }

    static constexpr const char* holder = "holder";
    static GDBusConnection* service;
    static GDBusConnection* caller;
};

GDBusConnection* PlixMonitorInterfaceTest::service = nullptr;
GDBusConnection* PlixMonitorInterfaceTest::caller = nullptr;

TEST_F(PlixMonitorInterfaceTest, ConfigureExportsItBesideTheConfigurationInterface)
{
    auto* adaptor = G_DBUS_INTERFACE_SKELETON(DBusInterface::getInstance()->getAdaptor());
    EXPECT_EQ(g_dbus_interface_skeleton_get_connection(monitorSkeleton()),
              g_dbus_interface_skeleton_get_connection(adaptor));
    EXPECT_STREQ(g_dbus_interface_skeleton_get_object_path(monitorSkeleton()), "/plix");
    EXPECT_STREQ(g_dbus_interface_skeleton_get_info(monitorSkeleton())->name, monitorInterface);
}

TEST_F(PlixMonitorInterfaceTest, ListValuesOfAnEngineWithoutValuesIsEmpty)
{
    EXPECT_EQ(replyText("ListValues", nullptr), "(@a(sssb) [],)");
}

TEST_F(PlixMonitorInterfaceTest, GetValuesOfAnUndeclaredIdAnswers9AndNoValues)
{
    EXPECT_EQ(replyText("GetValues", g_variant_new_parsed("(['no/such'],)")), "(9, @a{sv} {})");
}

TEST_F(PlixMonitorInterfaceTest, ApplyWithAnUnsupportedTypeAnswers11NamingTheEntry)
{
    EXPECT_EQ(replyText("Apply", g_variant_new_parsed("({'a/x': <int64 1>}, true)")),
              "(11, 'a/x')");
}

TEST_F(PlixMonitorInterfaceTest, ApplyOfAnUndeclaredIdAnswers9NamingIt)
{
    EXPECT_EQ(replyText("Apply", g_variant_new_parsed("({'no/such': <'x'>}, true)")),
              "(9, 'no/such')");
}

TEST_F(PlixMonitorInterfaceTest, ApplyWhileAnotherClientHoldsATransactionAnswers8)
{
    ASSERT_EQ(Plix::getInstance()->transactionStart(holder, true), 0);
    EXPECT_EQ(replyText("Apply", g_variant_new_parsed("({'no/such': <1>}, true)")), "(8, '')");
}

TEST_F(PlixMonitorInterfaceTest, ApplyOfNothingAnswers0)
{
    EXPECT_EQ(replyText("Apply", g_variant_new_parsed("(@a{sv} {}, false)")), "(0, '')");
}

TEST_F(PlixMonitorInterfaceTest, StoreStatusOfAnEngineWithoutFilesHasEveryFileWritten)
{
    EXPECT_EQ(replyText("StoreStatus", nullptr), "(true, @a(ss) [])");
}

TEST_F(PlixMonitorInterfaceTest, ValuesChangedCarriesTheIdsAndThePersistentFlag)
{
    PlixSeenSignal seen;
    const guint subscription = g_dbus_connection_signal_subscribe(
        caller, nullptr, monitorInterface, "ValuesChanged", "/plix", nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, recordSignal, &seen, nullptr);
    PrivateBus::roundTrip(caller);
    PlixMonitorInterface::getInstance()->valuesChanged({"a/x", "b/y"}, true);
    EXPECT_TRUE(PrivateBus::iterateUntil(seen.seen));
    EXPECT_EQ(seen.ids, (std::vector<std::string>{"a/x", "b/y"}));
    EXPECT_TRUE(seen.persistent);
    g_dbus_connection_signal_unsubscribe(caller, subscription);
}
