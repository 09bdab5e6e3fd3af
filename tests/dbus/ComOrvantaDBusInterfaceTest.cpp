#include "ComOrvantaDBusInterface.h"

#include "PrivateBus.h"

#include <gtest/gtest.h>

#include <string>

namespace {
const char* const ctrlInterface = "com.orvanta.dbus";
}

class ComOrvantaDBusInterfaceTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        service = PrivateBus::connect();
        client = PrivateBus::connect();
        ComOrvantaDBusInterface* ctrl = ComOrvantaDBusInterface::getInstance();
        ctrl->connect_methods();
        g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(ctrl->getAdaptor()), service,
                                         "/ctrl", nullptr);
    }

    // Calls a control method; answers the reply's signature and the lines
    // written meanwhile.
    static std::string call(const char* method, std::string& output)
    {
        std::string error;
        testing::internal::CaptureStdout();
        GVariant* reply =
            PrivateBus::call(client, service, "/ctrl", ctrlInterface, method, nullptr, &error);
        output = testing::internal::GetCapturedStdout();
        if (reply == nullptr) {
            return "error: " + error;
        }
        const std::string signature = g_variant_get_type_string(reply);
        g_variant_unref(reply);
        return signature;
    }

    static GDBusConnection* service;
    static GDBusConnection* client;
};

GDBusConnection* ComOrvantaDBusInterfaceTest::service = nullptr;
GDBusConnection* ComOrvantaDBusInterfaceTest::client = nullptr;

TEST_F(ComOrvantaDBusInterfaceTest, GetInstanceAlwaysAnswersTheSameObject)
{
    EXPECT_EQ(ComOrvantaDBusInterface::getInstance(), ComOrvantaDBusInterface::getInstance());
}

TEST_F(ComOrvantaDBusInterfaceTest, SkeletonCarriesTheControlInterfaceWithInitAndQuit)
{
    GDBusInterfaceInfo* info = g_dbus_interface_skeleton_get_info(
        G_DBUS_INTERFACE_SKELETON(ComOrvantaDBusInterface::getInstance()->getAdaptor()));
    EXPECT_STREQ(info->name, ctrlInterface);
    ASSERT_NE(g_dbus_interface_info_lookup_method(info, "Quit"), nullptr);
    ASSERT_NE(g_dbus_interface_info_lookup_method(info, "Init"), nullptr);
    for (const char* method : {"Quit", "Init"}) {
        GDBusMethodInfo* methodInfo = g_dbus_interface_info_lookup_method(info, method);
        EXPECT_STREQ(g_dbus_annotation_info_lookup(methodInfo->annotations,
                                                   "org.freedesktop.DBus.Method.NoReply"),
                     "true")
            << method;
    }
}

TEST_F(ComOrvantaDBusInterfaceTest, QuitLogsLineAndEmptyLineAndRepliesEmpty)
{
    std::string output;
    EXPECT_EQ(call("Quit", output), "()");
    EXPECT_EQ(output, "[NFO] Quit() Method invoked by DBus\n\n");
}

TEST_F(ComOrvantaDBusInterfaceTest, InitLogsLineAndEmptyLineAndRepliesEmpty)
{
    std::string output;
    EXPECT_EQ(call("Init", output), "()");
    EXPECT_EQ(output, "[NFO] Init() Method invoked by DBus\n\n");
}

TEST_F(ComOrvantaDBusInterfaceTest, QuitLeavesTheObjectServing)
{
    std::string output;
    ASSERT_EQ(call("Quit", output), "()");
    EXPECT_EQ(call("Quit", output), "()");
    EXPECT_EQ(call("Init", output), "()");
}
