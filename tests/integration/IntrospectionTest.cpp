#include "PlixServingTest.h"

#include <sstream>

namespace {
// Arguments as the introspection data shows them: "(name:type,...)".
std::string describe(GDBusArgInfo** args)
{
    std::ostringstream text;
    text << "(";
    for (int i = 0; args != nullptr && args[i] != nullptr; ++i) {
        text << (i > 0 ? "," : "") << args[i]->name << ":" << args[i]->signature;
    }
    text << ")";
    return text.str();
}

// A method as the introspection data shows it: "Name(in-args)->(out-args)".
std::string describe(const GDBusMethodInfo* method)
{
    return method->name + describe(method->in_args) + "->" + describe(method->out_args);
}

struct PlixNodeInfoUnref
{
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};
using PlixNodeInfoPtr = std::unique_ptr<GDBusNodeInfo, PlixNodeInfoUnref>;

PlixNodeInfoPtr parse(const std::string& xml)
{
    return PlixNodeInfoPtr(g_dbus_node_info_new_for_xml(xml.c_str(), nullptr));
}

std::vector<std::string> methodsOf(const GDBusInterfaceInfo* interface)
{
    std::vector<std::string> methods;
    for (int i = 0; interface->methods != nullptr && interface->methods[i] != nullptr; ++i) {
        methods.push_back(describe(interface->methods[i]));
    }
    return methods;
}

// Each signal as "Name(args)".
std::vector<std::string> signalsOf(const GDBusInterfaceInfo* interface)
{
    std::vector<std::string> signals;
    for (int i = 0; interface->signals != nullptr && interface->signals[i] != nullptr; ++i) {
        signals.push_back(interface->signals[i]->name + describe(interface->signals[i]->args));
    }
    return signals;
}

bool hasMembers(GDBusSignalInfo** signals, GDBusPropertyInfo** properties)
{
    return (signals != nullptr && signals[0] != nullptr) ||
           (properties != nullptr && properties[0] != nullptr);
}
} // namespace

using Introspection = PlixServingTest;

TEST_F(Introspection, PlixShowsTheNineteenMethodsWithTheirArguments)
{
    const auto node = parse(client().introspect("/plix"));
    ASSERT_TRUE(node);
    const GDBusInterfaceInfo* adaptor =
        g_dbus_node_info_lookup_interface(node.get(), "com.orvanta.plix.dBusAdaptor");
    ASSERT_NE(adaptor, nullptr);
    const std::vector<std::string> expected{"Transactionstart(persistent:b)->(message:i)",
                                            "SetBoolValue(ID:s,value:b)->(message:i)",
                                            "SetIntValue(ID:s,value:i)->(message:i)",
                                            "SetDoubleValue(ID:s,value:d)->(message:i)",
                                            "SetStringValue(ID:s,value:s)->(message:i)",
                                            "SetBoolValueTransient(ID:s,value:b)->(message:i)",
                                            "SetIntValueTransient(ID:s,value:i)->(message:i)",
                                            "SetDoubleValueTransient(ID:s,value:d)->(message:i)",
                                            "SetStringValueTransient(ID:s,value:s)->(message:i)",
                                            "Transactionstop()->(message:i)",
                                            "GetIntValue(ID:s)->(Value:i,message:i)",
                                            "GetDoubleValue(ID:s)->(Value:d,message:i)",
                                            "GetStringValue(ID:s)->(Value:s,message:i)",
                                            "GetBoolValue(ID:s)->(Value:b,message:i)",
                                            "GetIntValueTransient(ID:s)->(message:i,value:i)",
                                            "GetDoubleValueTransient(ID:s)->(message:i,value:d)",
                                            "GetStringValueTransient(ID:s)->(message:i,value:s)",
                                            "GetBoolValueTransient(ID:s)->(message:i,value:b)",
                                            "Verify(value:v,ID:s)->(message:i)"};
    EXPECT_EQ(methodsOf(adaptor), expected);
    EXPECT_FALSE(hasMembers(adaptor->signals, adaptor->properties));
    for (int i = 0; adaptor->methods[i] != nullptr; ++i) {
        EXPECT_TRUE(adaptor->methods[i]->annotations == nullptr ||
                    adaptor->methods[i]->annotations[0] == nullptr)
            << adaptor->methods[i]->name << " carries an annotation";
    }
}

TEST_F(Introspection, CtrlShowsQuitAndInitAsNoReplyMethods)
{
    const auto node = parse(client().introspect("/ctrl"));
    ASSERT_TRUE(node);
    const GDBusInterfaceInfo* control =
        g_dbus_node_info_lookup_interface(node.get(), "com.orvanta.dbus");
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(methodsOf(control), (std::vector<std::string>{"Quit()->()", "Init()->()"}));
    EXPECT_FALSE(hasMembers(control->signals, control->properties));
    for (int i = 0; control->methods[i] != nullptr; ++i) {
        const gchar* noReply = g_dbus_annotation_info_lookup(control->methods[i]->annotations,
                                                             "org.freedesktop.DBus.Method.NoReply");
        EXPECT_STREQ(noReply, "true") << control->methods[i]->name;
    }
}

TEST_F(Introspection, PlixShowsTheMonitorsMethodsAndItsSignal)
{
    const auto node = parse(client().introspect("/plix"));
    ASSERT_TRUE(node);
    const GDBusInterfaceInfo* monitor =
        g_dbus_node_info_lookup_interface(node.get(), "com.orvanta.plix.Monitor");
    ASSERT_NE(monitor, nullptr);
    EXPECT_EQ(
        methodsOf(monitor),
        (std::vector<std::string>{
            "ListValues()->(values:a(sssb))", "GetValues(ids:as)->(message:i,values:a{sv})",
            "Apply(changes:a{sv},persistent:b)->(message:i,failed_id:s)",
            "StoreStatus()->(all_written:b,failing:a(ss))",
            "ApplyConfirmed(changes:a{sv},timeout_seconds:u)->(message:i,failed_id:s,token:s)",
            "Confirm(token:s)->(message:i)", "Cancel(token:s)->(message:i)",
            "Pending()->(pending:b,seconds_left:u,ids:as)"}));
    EXPECT_EQ(signalsOf(monitor), (std::vector<std::string>{"ValuesChanged(ids:as,persistent:b)"}));
    EXPECT_TRUE(monitor->properties == nullptr || monitor->properties[0] == nullptr);
}
