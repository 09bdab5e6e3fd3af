// The floor of the bus benchmarks: a do-nothing program that owns a name,
// exports the configuration and the monitor interface at /plix from the same
// interface descriptions as the service, and answers every call with
// constants (zero status, zero or empty values) from its main loop. What the service costs
// beyond this is the cost of its own work.
//
//   floor_service [NAME]     (default com.orvanta.plix.floor)

#include <gio/gio.h>

#include <cstdio>

namespace {
GDBusNodeInfo* interfaceDescription(const char* path)
{
    gchar* text = nullptr;
    GError* error = nullptr;
    if (!g_file_get_contents(path, &text, nullptr, &error)) {
        std::fprintf(stderr, "floor_service: %s\n", error->message);
        return nullptr;
    }
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(text, &error);
    g_free(text);
    if (node == nullptr) {
        std::fprintf(stderr, "floor_service: %s\n", error->message);
    }
    return node;
}

// A zero of every basic type the interface replies with.
GVariant* zeroOf(const char* signature)
{
    switch (signature[0]) {
    case 'b':
        return g_variant_new_boolean(FALSE);
    case 'd':
        return g_variant_new_double(0.0);
    case 's':
        return g_variant_new_string("");
    case 'a':
        return g_variant_new_array(g_variant_type_element(G_VARIANT_TYPE(signature)), nullptr, 0);
    default:
        return g_variant_new_int32(0);
    }
}

void answerConstant(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                    GVariant*, GDBusMethodInvocation* invocation, gpointer)
{
    const GDBusMethodInfo* method = g_dbus_method_invocation_get_method_info(invocation);
    GVariantBuilder reply;
    g_variant_builder_init(&reply, G_VARIANT_TYPE_TUPLE);
    for (GDBusArgInfo** arg = method->out_args; arg != nullptr && *arg != nullptr; ++arg) {
        g_variant_builder_add_value(&reply, zeroOf((*arg)->signature));
    }
    g_dbus_method_invocation_return_value(invocation, g_variant_builder_end(&reply));
}

const GDBusInterfaceVTable constantAnswers = {answerConstant, nullptr, nullptr, {nullptr}};

bool exportInterface(GDBusConnection* connection, GDBusNodeInfo* node)
{
    GError* error = nullptr;
    if (g_dbus_connection_register_object(connection, "/plix", node->interfaces[0],
                                          &constantAnswers, nullptr, nullptr, &error) == 0) {
        std::fprintf(stderr, "floor_service: %s\n", error->message);
        return false;
    }
    return true;
}

void nameLost(GDBusConnection*, const gchar* name, gpointer loop)
{
    std::fprintf(stderr, "floor_service: name %s not owned\n", name);
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
}
} // namespace

int main(int argc, char** argv)
{
    GDBusNodeInfo* adaptor = interfaceDescription(PLIX_ADAPTOR_XML);
    GDBusNodeInfo* monitor = interfaceDescription(PLIX_MONITOR_XML);
    if (adaptor == nullptr || monitor == nullptr) {
        return 1;
    }
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    const char* name = argc > 1 ? argv[1] : "com.orvanta.plix.floor";
    // The object is exported before the name is owned, as the service does,
    // so a client that sees the name finds the object.
    GDBusConnection* connection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    if (connection == nullptr) {
        std::fprintf(stderr, "floor_service: no system bus\n");
        return 1;
    }
    if (!exportInterface(connection, adaptor) || !exportInterface(connection, monitor)) {
        return 1;
    }
    g_bus_own_name_on_connection(connection, name, G_BUS_NAME_OWNER_FLAGS_NONE, nullptr, nameLost,
                                 loop, nullptr);
    g_main_loop_run(loop);
    return 1;
}
