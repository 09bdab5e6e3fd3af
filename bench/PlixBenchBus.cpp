#include "PlixBenchBus.h"

#include <cstdio>
#include <cstring>

namespace {
const char* const adaptorPath = "/plix";
// Long enough for a 100,000-value start-up, short enough to end a hung run.
const int callTimeoutMs = 120000;

struct PendingReplies
{
    std::vector<int> statuses;
    std::vector<PlixBenchCall> calls;
    std::size_t left = 0;
    GDBusConnection* connection = nullptr;
};

struct PendingSlot
{
    PendingReplies* replies;
    std::size_t index;
};

void reportError(const char* what, GError* error)
{
    std::fprintf(stderr, "plix_bench_client: %s: %s\n", what, error->message);
    g_error_free(error);
}

void collectReply(GObject*, GAsyncResult* result, gpointer data)
{
    auto* slot = static_cast<PendingSlot*>(data);
    PendingReplies* replies = slot->replies;
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_finish(replies->connection, result, &error);
    if (reply == nullptr) {
        reportError(replies->calls[slot->index].method, error);
    } else {
        replies->statuses[slot->index] = PlixBenchBus::statusOf(replies->calls[slot->index], reply);
        g_variant_unref(reply);
    }
    --replies->left;
    delete slot;
}
} // namespace

PlixBenchBus::PlixBenchBus()
{
    gchar* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    GError* error = nullptr;
    connection = g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    g_free(address);
    if (connection == nullptr) {
        reportError("connect", error);
    }
}

PlixBenchBus::~PlixBenchBus()
{
    if (connection != nullptr) {
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
    }
}

// The plain getters of the configuration interface answer (value, status),
// every other method (status...).
int PlixBenchBus::statusOf(const PlixBenchCall& call, GVariant* reply)
{
    const bool plainGetter = std::strcmp(call.interface, PlixBenchCall::adaptor) == 0 &&
                             std::strncmp(call.method, "Get", 3) == 0 &&
                             std::strstr(call.method, "Transient") == nullptr;
    GVariant* status = g_variant_get_child_value(reply, plainGetter ? 1 : 0);
    const int code = g_variant_get_int32(status);
    g_variant_unref(status);
    return code;
}

int PlixBenchBus::call(const std::string& destination, const PlixBenchCall& call)
{
    int status = busError;
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        connection, destination.c_str(), adaptorPath, call.interface, call.method, call.arguments,
        nullptr, G_DBUS_CALL_FLAGS_NONE, callTimeoutMs, nullptr, &error);
    if (reply == nullptr) {
        reportError(call.method, error);
        return status;
    }
    status = statusOf(call, reply);
    g_variant_unref(reply);
    return status;
}

bool PlixBenchBus::callWhenOwned(const std::string& destination, const PlixBenchCall& call,
                                 int& status)
{
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        connection, destination.c_str(), adaptorPath, call.interface, call.method, call.arguments,
        nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, callTimeoutMs, nullptr, &error);
    if (reply == nullptr) {
        g_error_free(error);
        return false;
    }
    status = statusOf(call, reply);
    g_variant_unref(reply);
    return true;
}

bool PlixBenchBus::ping(const std::string& destination)
{
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        connection, destination.c_str(), adaptorPath, "org.freedesktop.DBus.Peer", "Ping", nullptr,
        nullptr, G_DBUS_CALL_FLAGS_NONE, callTimeoutMs, nullptr, &error);
    if (reply == nullptr) {
        reportError("Ping", error);
        return false;
    }
    g_variant_unref(reply);
    return true;
}

std::vector<int> PlixBenchBus::pipeline(const std::string& destination,
                                        const std::vector<PlixBenchCall>& calls)
{
    // The replies are dispatched to a context of this call alone, so nothing
    // else of the process runs while they are awaited.
    GMainContext* context = g_main_context_new();
    g_main_context_push_thread_default(context);
    PendingReplies replies{std::vector<int>(calls.size(), busError), calls, calls.size(),
                           connection};
    for (std::size_t index = 0; index < calls.size(); ++index) {
        g_dbus_connection_call(connection, destination.c_str(), adaptorPath, calls[index].interface,
                               calls[index].method, calls[index].arguments, nullptr,
                               G_DBUS_CALL_FLAGS_NONE, callTimeoutMs, nullptr, collectReply,
                               new PendingSlot{&replies, index});
    }
    while (replies.left > 0) {
        g_main_context_iteration(context, TRUE);
    }
    g_main_context_pop_thread_default(context);
    g_main_context_unref(context);
    return replies.statuses;
}
