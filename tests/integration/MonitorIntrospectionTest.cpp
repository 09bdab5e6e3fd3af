#include "PlixServingTest.h"

#ifndef PLIX_INTERFACE_DIR
#error "PLIX_INTERFACE_DIR must be defined by the build"
#endif

namespace {

struct PlixNodeInfoUnref
{
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};
using PlixNodeInfoPtr = std::unique_ptr<GDBusNodeInfo, PlixNodeInfoUnref>;

// One interface in the XML form GIO writes, so that a description in the
// repository and the introspection data of the running service compare
// whatever their layout.
std::string interfaceXml(const std::string& nodeXml, const std::string& name)
{
    const PlixNodeInfoPtr node(g_dbus_node_info_new_for_xml(nodeXml.c_str(), nullptr));
    if (!node) {
        return "(no node)";
    }
    const GDBusInterfaceInfo* info = g_dbus_node_info_lookup_interface(node.get(), name.c_str());
    if (info == nullptr) {
        return "(no interface " + name + ")";
    }
    GString* text = g_string_new(nullptr);
    g_dbus_interface_info_generate_xml(const_cast<GDBusInterfaceInfo*>(info), 0, text);
    gchar* generated = g_string_free(text, FALSE);
    const std::string result = generated;
    g_free(generated);
    return result;
}

std::string description(const std::string& file)
{
    return PlixTestDir::readFile(std::string(PLIX_INTERFACE_DIR) + "/" + file);
}

} // namespace

using MonitorIntrospection = PlixServingTest;

TEST_F(MonitorIntrospection, ConfigurationInterfaceIsExactlyItsDescription)
{
    const std::string name = "com.orvanta.plix.dBusAdaptor";
    EXPECT_EQ(interfaceXml(client().introspect("/plix"), name),
              interfaceXml(description("com.orvanta.plix/dbus-adaptor.xml"), name));
}

TEST_F(MonitorIntrospection, ControlInterfaceIsExactlyItsDescription)
{
    const std::string name = "com.orvanta.dbus";
    EXPECT_EQ(interfaceXml(client().introspect("/ctrl"), name),
              interfaceXml(description("com.orvanta.dbus/com.orvanta.dbus.xml"), name));
}

TEST_F(MonitorIntrospection, MonitorInterfaceIsExactlyItsDescription)
{
    const std::string name = "com.orvanta.plix.Monitor";
    EXPECT_EQ(interfaceXml(client().introspect("/plix"), name),
              interfaceXml(description("com.orvanta.plix/plix-monitor.xml"), name));
}
