#include "PlixBenchDconf.h"

#include "PlixBenchStats.h"

#include <cstdio>
#include <functional>
#include <string>

namespace {
const char* const writerName = "ca.desrt.dconf";
const char* const writerPath = "/ca/desrt/dconf/Writer/user";
const int keysPerChange = 10;
const int callTimeoutMs = 30000;

// The writer takes a change set as the serialised bytes of an a{smv}
// dictionary of absolute key paths.
GVariant* changeSetOf(int i)
{
    GVariantBuilder changes;
    g_variant_builder_init(&changes, G_VARIANT_TYPE("a{smv}"));
    for (int key = 0; key < keysPerChange; ++key) {
        const std::string path = "/plixbench/k" + std::to_string(key);
        GVariant* value = g_variant_new_int32(i % 1000);
        g_variant_builder_add(&changes, "{smv}", path.c_str(), value);
    }
    GVariant* changeSet = g_variant_ref_sink(g_variant_builder_end(&changes));
    GVariant* bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, g_variant_get_data(changeSet),
                                                g_variant_get_size(changeSet), 1);
    g_variant_unref(changeSet);
    return g_variant_new("(@ay)", bytes);
}

bool timed(int count, const std::function<bool(int)>& operation, PlixBenchStats& stats)
{
    const int warmUp = count / 10 + 1;
    for (int i = 0; i < warmUp + count; ++i) {
        const gint64 begin = g_get_monotonic_time();
        if (!operation(i)) {
            return false;
        }
        if (i >= warmUp) {
            stats.add(static_cast<double>(g_get_monotonic_time() - begin));
        }
    }
    return true;
}
} // namespace

PlixBenchDconf::PlixBenchDconf()
{
    GError* error = nullptr;
    connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    if (connection == nullptr) {
        std::fprintf(stderr, "plix_bench_client: session bus: %s\n", error->message);
        g_error_free(error);
    }
}

PlixBenchDconf::~PlixBenchDconf()
{
    if (connection != nullptr) {
        g_object_unref(connection);
    }
}

bool PlixBenchDconf::call(const char* path, const char* interface, const char* method,
                          GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(connection, writerName, path, interface, method,
                                                  arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                                  callTimeoutMs, nullptr, &error);
    if (reply == nullptr) {
        std::fprintf(stderr, "plix_bench_client: %s: %s\n", method, error->message);
        g_error_free(error);
        return false;
    }
    g_variant_unref(reply);
    return true;
}

bool PlixBenchDconf::change(int i)
{
    return call(writerPath, "ca.desrt.dconf.Writer", "Change", changeSetOf(i));
}

bool PlixBenchDconf::ping()
{
    return call(writerPath, "org.freedesktop.DBus.Peer", "Ping", nullptr);
}

bool PlixBenchDconf::run(int count)
{
    PlixBenchStats changes;
    PlixBenchStats pings;
    const auto changeKeys = [this](int i) { return change(i); };
    const auto pingWriter = [this](int) { return ping(); };
    if (connection == nullptr || !timed(count, changeKeys, changes) ||
        !timed(count, pingWriter, pings)) {
        return false;
    }
    PlixBenchStats::printRow("comparison", keysPerChange,
                             "dconf Writer.Change of 10 keys (durable)", "us", changes.min(),
                             changes.median(), changes.p99(), pings.median());
    return true;
}
