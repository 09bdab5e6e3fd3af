#include "DBusInterface.h"

#include "PrivateBus.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace {
const char* const plixInterface = "com.orvanta.plix.dBusAdaptor";
const char* const unknownId = "no/such";

bool hasLine(const std::string& output, const std::string& line)
{
    return ("\n" + output).find("\n" + line + "\n") != std::string::npos;
}
} // namespace

// The binding runs against the engine as it is before any configuration
// file is loaded: no value is declared, one transaction at a time.
class DBusInterfaceTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        service = PrivateBus::connect();
        first = PrivateBus::connect();
        second = PrivateBus::connect();
        DBusInterface* plix = DBusInterface::getInstance();
        plix->connect_methods();
        g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(plix->getAdaptor()), service,
                                         "/plix", nullptr);
    }

    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    // A failed read or verify inside a transaction ends it; whatever a test
    // leaves open is closed so that the next one finds the engine idle.
    void TearDown() override
    {
        GVariant* reply =
            PrivateBus::call(first, service, "/plix", plixInterface, "Transactionstop", nullptr);
        if (reply != nullptr) {
            g_variant_unref(reply);
        }
    }

    // Calls a method of the configuration interface; the reply, or nullptr
    // after a failure of the test.
    static GVariant* call(GDBusConnection* caller, const char* method, GVariant* arguments)
    {
        std::string error;
        GVariant* reply =
            PrivateBus::call(caller, service, "/plix", plixInterface, method, arguments, &error);
        EXPECT_NE(reply, nullptr) << method << ": " << error;
        return reply;
    }

    // The status of a method that replies it alone.
    static int status(GDBusConnection* caller, const char* method, GVariant* arguments)
    {
        GVariant* reply = call(caller, method, arguments);
        if (reply == nullptr) {
            return -1;
        }
        EXPECT_STREQ(g_variant_get_type_string(reply), "(i)") << method;
        gint32 code = -1;
        g_variant_get(reply, "(i)", &code);
        g_variant_unref(reply);
        return code;
    }

    static std::string signature(GDBusConnection* caller, const char* method)
    {
        GVariant* reply = call(caller, method, g_variant_new("(s)", unknownId));
        if (reply == nullptr) {
            return "";
        }
        std::string text = g_variant_get_type_string(reply);
        g_variant_unref(reply);
        return text;
    }

    static int verify(GVariant* candidate)
    {
        return status(first, "Verify", g_variant_new("(vs)", candidate, unknownId));
    }

    static GDBusConnection* service;
    static GDBusConnection* first;
    static GDBusConnection* second;
};

GDBusConnection* DBusInterfaceTest::service = nullptr;
GDBusConnection* DBusInterfaceTest::first = nullptr;
GDBusConnection* DBusInterfaceTest::second = nullptr;

TEST_F(DBusInterfaceTest, GetInstanceAlwaysAnswersTheSameObject)
{
    EXPECT_EQ(DBusInterface::getInstance(), DBusInterface::getInstance());
}

TEST_F(DBusInterfaceTest, SkeletonCarriesTheNineteenMethodsInOrder)
{
    GDBusInterfaceInfo* info = g_dbus_interface_skeleton_get_info(
        G_DBUS_INTERFACE_SKELETON(DBusInterface::getInstance()->getAdaptor()));
    EXPECT_STREQ(info->name, plixInterface);
    const char* expected[] = {"Transactionstart",
                              "SetBoolValue",
                              "SetIntValue",
                              "SetDoubleValue",
                              "SetStringValue",
                              "SetBoolValueTransient",
                              "SetIntValueTransient",
                              "SetDoubleValueTransient",
                              "SetStringValueTransient",
                              "Transactionstop",
                              "GetIntValue",
                              "GetDoubleValue",
                              "GetStringValue",
                              "GetBoolValue",
                              "GetIntValueTransient",
                              "GetDoubleValueTransient",
                              "GetStringValueTransient",
                              "GetBoolValueTransient",
                              "Verify"};
    size_t count = 0;
    for (GDBusMethodInfo** method = info->methods; *method != nullptr; ++method, ++count) {
        ASSERT_LT(count, std::size(expected));
        EXPECT_STREQ((*method)->name, expected[count]);
    }
    EXPECT_EQ(count, std::size(expected));
}

TEST_F(DBusInterfaceTest, TransactionBelongsToTheCallersUniqueName)
{
    ASSERT_EQ(status(first, "Transactionstart", g_variant_new("(b)", TRUE)), 0);
    EXPECT_EQ(status(second, "Transactionstart", g_variant_new("(b)", TRUE)), 8);
    EXPECT_NE(status(second, "SetIntValue", g_variant_new("(si)", unknownId, 1)), 0);
    EXPECT_EQ(status(second, "Transactionstop", nullptr), 4);
    EXPECT_EQ(status(first, "Transactionstop", nullptr), 0);
}

TEST_F(DBusInterfaceTest, PlainGettersReplyValueThenStatus)
{
    EXPECT_EQ(signature(first, "GetIntValue"), "(ii)");
    EXPECT_EQ(signature(first, "GetDoubleValue"), "(di)");
    EXPECT_EQ(signature(first, "GetStringValue"), "(si)");
    EXPECT_EQ(signature(first, "GetBoolValue"), "(bi)");
}

TEST_F(DBusInterfaceTest, TransientGettersReplyStatusThenValue)
{
    EXPECT_EQ(signature(first, "GetIntValueTransient"), "(ii)");
    EXPECT_EQ(signature(first, "GetDoubleValueTransient"), "(id)");
    EXPECT_EQ(signature(first, "GetStringValueTransient"), "(is)");
    EXPECT_EQ(signature(first, "GetBoolValueTransient"), "(ib)");
}

TEST_F(DBusInterfaceTest, IntGettersReplyTheSameFieldsInOppositeOrder)
{
    ASSERT_EQ(status(first, "Transactionstart", g_variant_new("(b)", FALSE)), 0);
    GVariant* plain = call(first, "GetIntValue", g_variant_new("(s)", unknownId));
    GVariant* transient = call(first, "GetIntValueTransient", g_variant_new("(s)", unknownId));
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(transient, nullptr);
    gint32 plainValue = -1;
    gint32 plainStatus = -1;
    gint32 transientValue = -1;
    gint32 transientStatus = -1;
    g_variant_get(plain, "(ii)", &plainValue, &plainStatus);
    g_variant_get(transient, "(ii)", &transientStatus, &transientValue);
    EXPECT_EQ(plainStatus, 9);
    EXPECT_EQ(transientStatus, 9);
    EXPECT_EQ(plainValue, transientValue);
    g_variant_unref(plain);
    g_variant_unref(transient);
}

TEST_F(DBusInterfaceTest, FailedStringGettersReplyEmptyString)
{
    GVariant* plain = call(first, "GetStringValue", g_variant_new("(s)", unknownId));
    GVariant* transient = call(first, "GetStringValueTransient", g_variant_new("(s)", unknownId));
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(transient, nullptr);
    const gchar* text = nullptr;
    gint32 code = 0;
    g_variant_get(plain, "(&si)", &text, &code);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(code, 4);
    g_variant_get(transient, "(i&s)", &code, &text);
    EXPECT_EQ(code, 9);
    EXPECT_STREQ(text, "");
    g_variant_unref(plain);
    g_variant_unref(transient);
}

TEST_F(DBusInterfaceTest, SettersReplyTheEngineStatus)
{
    EXPECT_EQ(status(first, "SetBoolValue", g_variant_new("(sb)", unknownId, TRUE)), 4);
    EXPECT_EQ(status(first, "SetIntValue", g_variant_new("(si)", unknownId, 1)), 4);
    EXPECT_EQ(status(first, "SetDoubleValue", g_variant_new("(sd)", unknownId, 1.5)), 4);
    EXPECT_EQ(status(first, "SetStringValue", g_variant_new("(ss)", unknownId, "x")), 4);
    EXPECT_EQ(status(first, "SetBoolValueTransient", g_variant_new("(sb)", unknownId, TRUE)), 9);
    EXPECT_EQ(status(first, "SetIntValueTransient", g_variant_new("(si)", unknownId, 1)), 9);
    EXPECT_EQ(status(first, "SetDoubleValueTransient", g_variant_new("(sd)", unknownId, 1.5)), 9);
    EXPECT_EQ(status(first, "SetStringValueTransient", g_variant_new("(ss)", unknownId, "x")), 9);
}

TEST_F(DBusInterfaceTest, VerifyIntWritesIntLineOnStandardOutput)
{
    testing::internal::CaptureStdout();
    const int code = verify(g_variant_new_int32(-7));
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(code, 4);
    EXPECT_TRUE(hasLine(output, "Int: -7")) << output;
}

TEST_F(DBusInterfaceTest, VerifyBoolTrueBehavesLikeIntOneWithoutIntLine)
{
    // An unknown XML-ID ends the transaction, so each candidate gets its own.
    ASSERT_EQ(status(first, "Transactionstart", g_variant_new("(b)", FALSE)), 0);
    testing::internal::CaptureStdout();
    const int asBool = verify(g_variant_new_boolean(TRUE));
    const std::string boolOutput = testing::internal::GetCapturedStdout();
    ASSERT_EQ(status(first, "Transactionstart", g_variant_new("(b)", FALSE)), 0);
    testing::internal::CaptureStdout();
    const int asInt = verify(g_variant_new_int32(1));
    const std::string intOutput = testing::internal::GetCapturedStdout();
    EXPECT_EQ(asBool, 9);
    EXPECT_EQ(asBool, asInt);
    EXPECT_EQ(boolOutput.find("Int: "), std::string::npos) << boolOutput;
    EXPECT_TRUE(hasLine(intOutput, "Int: 1")) << intOutput;
}

TEST_F(DBusInterfaceTest, VerifyStringAndDoubleReachTheEngine)
{
    EXPECT_EQ(verify(g_variant_new_string("secret")), 4);
    EXPECT_EQ(verify(g_variant_new_double(2.5)), 4);
}

TEST_F(DBusInterfaceTest, VerifyOfAnotherVariantTypeRepliesWrongTypeWithoutEngine)
{
    // 4 would mean the engine was asked; 11 comes from the binding itself.
    EXPECT_EQ(verify(g_variant_new_int64(1)), 11);
    const gchar* items[] = {"a", nullptr};
    EXPECT_EQ(verify(g_variant_new_strv(items, -1)), 11);
}

TEST_F(DBusInterfaceTest, WrongArgumentTypeIsRefusedBeforeAnyHandler)
{
    std::string error;
    GVariant* reply = PrivateBus::call(first, service, "/plix", plixInterface, "SetIntValue",
                                       g_variant_new("(ss)", unknownId, "5"), &error);
    EXPECT_EQ(reply, nullptr);
    EXPECT_NE(error.find("InvalidArgs"), std::string::npos) << error;
}

TEST_F(DBusInterfaceTest, AppletChangedLogsNegativeIdAsItIs)
{
    testing::internal::CaptureStdout();
    DBusInterface::static_applet_changed(nullptr, -5);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[NFO] applet_changed with ID: -5\n");
}

TEST_F(DBusInterfaceTest, AppletChangedLogsZeroId)
{
    testing::internal::CaptureStdout();
    DBusInterface::getInstance()->applet_changed(nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[NFO] applet_changed with ID: 0\n");
}

TEST_F(DBusInterfaceTest, PanelSignalReachesHandlerThroughASubscription)
{
    OrvantaZectrl* panel = orvanta_zectrl_skeleton_new();
    ASSERT_TRUE(g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(panel), service,
                                                 "/panel", nullptr));
    OrvantaZectrl* proxy = orvanta_zectrl_proxy_new_sync(
        first, G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES,
        g_dbus_connection_get_unique_name(service), "/panel", nullptr, nullptr);
    ASSERT_NE(proxy, nullptr);
    bool delivered = false;
    g_signal_connect(proxy, "applet-changed", G_CALLBACK(DBusInterface::static_applet_changed),
                     nullptr);
    g_signal_connect_swapped(proxy, "applet-changed", G_CALLBACK(+[](bool* flag) { *flag = true; }),
                             &delivered);
    PrivateBus::roundTrip(first);

    testing::internal::CaptureStdout();
    orvanta_zectrl_emit_applet_changed(panel, 7);
    PrivateBus::iterateUntil(delivered);
    const std::string output = testing::internal::GetCapturedStdout();

    EXPECT_TRUE(delivered);
    EXPECT_EQ(output, "[NFO] applet_changed with ID: 7\n");
    g_object_unref(proxy);
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(panel));
    g_object_unref(panel);
}

TEST_F(DBusInterfaceTest, PanelSignalWithoutASubscriptionIsIgnored)
{
    // The watcher makes the service's own connection receive the signal, so
    // anything of the service listening on that connection would see it too.
    OrvantaZectrl* panel = orvanta_zectrl_skeleton_new();
    ASSERT_TRUE(g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(panel), second, "/panel",
                                                 nullptr));
    bool delivered = false;
    const guint watcher = g_dbus_connection_signal_subscribe(
        service, nullptr, "com.orvanta.zectrl", "appletChanged", "/panel", nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        +[](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
            gpointer flag) { *static_cast<bool*>(flag) = true; },
        &delivered, nullptr);
    PrivateBus::roundTrip(service);

    testing::internal::CaptureStdout();
    orvanta_zectrl_emit_applet_changed(panel, 3);
    PrivateBus::iterateUntil(delivered);
    const std::string output = testing::internal::GetCapturedStdout();

    EXPECT_TRUE(delivered);
    EXPECT_EQ(output.find("applet_changed"), std::string::npos) << output;
    g_dbus_connection_signal_unsubscribe(service, watcher);
    g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(panel));
    g_object_unref(panel);
}

TEST_F(DBusInterfaceTest, ConfigureHandsTheCommandLineToTheEngine)
{
    char program[] = "dbus-ex-plix";
    char option[] = "-h";
    char* argv[] = {program, option, nullptr};
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            DBusInterface::getInstance()->configure(2, argv);
        },
        testing::ExitedWithCode(1),
        "(^|\n)\\[NFO\\] Configuring Plix\n\nUsage: dbus-ex-plix \\[OPTION\\]\n");
}
