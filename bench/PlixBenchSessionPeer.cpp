#include "PlixBenchSessionPeer.h"

#include <cstdio>

namespace {
const int callTimeoutMs = 30000;
} // namespace

PlixBenchSessionPeer::PlixBenchSessionPeer(const char* name, const char* path)
    : name(name), path(path)
{
    GError* error = nullptr;
    connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    if (connection == nullptr) {
        std::fprintf(stderr, "plix_bench_client: session bus: %s\n", error->message);
        g_error_free(error);
    }
}

PlixBenchSessionPeer::~PlixBenchSessionPeer()
{
    if (connection != nullptr) {
        g_object_unref(connection);
    }
}

bool PlixBenchSessionPeer::call(const char* interface, const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* reply =
        g_dbus_connection_call_sync(connection, name, path, interface, method, arguments, nullptr,
                                    G_DBUS_CALL_FLAGS_NONE, callTimeoutMs, nullptr, &error);
    if (reply == nullptr) {
        std::fprintf(stderr, "plix_bench_client: %s %s: %s\n", name, method, error->message);
        g_error_free(error);
        return false;
    }
    g_variant_unref(reply);
    return true;
}

bool PlixBenchSessionPeer::ping()
{
    return call("org.freedesktop.DBus.Peer", "Ping", nullptr);
}
