#include "PrivateBus.h"

#include <chrono>
#include <cstdlib>
#include <unistd.h>

namespace {
// The bus gives up on a call before the wait does, so every pending call
// has been answered (if only with a time-out) when the wait returns.
constexpr int callTimeoutMs = 3000;
constexpr auto waitBound = std::chrono::seconds(5);

struct PendingCall
{
    bool done = false;
    GVariant* reply = nullptr;
    std::string error;
};

void onReply(GObject* source, GAsyncResult* result, gpointer data)
{
    auto* pending = static_cast<PendingCall*>(data);
    GError* error = nullptr;
    pending->reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error);
    if (error != nullptr) {
        pending->error = error->message;
        g_error_free(error);
    }
    pending->done = true;
}

GTestDBus* privateBus = nullptr;
pid_t busOwner = 0;

// The bus daemon shares the test's output; left to GLib's watcher, it may
// outlive the test for a while and keep the test runner waiting. Only the
// process that started it stops it, not a death test's child.
void stopPrivateBus()
{
    if (privateBus != nullptr && getpid() == busOwner) {
        g_test_dbus_down(privateBus);
    }
}
} // namespace

const char* PrivateBus::address()
{
    if (privateBus == nullptr) {
        privateBus = g_test_dbus_new(G_TEST_DBUS_NONE);
        g_test_dbus_up(privateBus);
        busOwner = getpid();
        std::atexit(stopPrivateBus);
    }
    return g_test_dbus_get_bus_address(privateBus);
}

GDBusConnection* PrivateBus::connect()
{
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return g_dbus_connection_new_for_address_sync(address(), flags, nullptr, nullptr, nullptr);
}

bool PrivateBus::iterateUntil(const bool& done)
{
    const auto deadline = std::chrono::steady_clock::now() + waitBound;
    while (!done && std::chrono::steady_clock::now() < deadline) {
        g_main_context_iteration(nullptr, FALSE);
        g_usleep(1000);
    }
    return done;
}

void PrivateBus::roundTrip(GDBusConnection* connection)
{
    // The bus handles one connection's messages in order, so the answer to
    // this call comes after every earlier message has taken effect.
    GVariant* reply = g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetId", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, callTimeoutMs, nullptr, nullptr);
    if (reply != nullptr) {
        g_variant_unref(reply);
    }
}

GVariant* PrivateBus::call(GDBusConnection* caller, GDBusConnection* service, const char* path,
                           const char* interface, const char* method, GVariant* arguments,
                           std::string* errorText)
{
    PendingCall pending;
    g_dbus_connection_call(caller, g_dbus_connection_get_unique_name(service), path, interface,
                           method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, callTimeoutMs,
                           nullptr, onReply, &pending);
    iterateUntil(pending.done);
    if (errorText != nullptr) {
        *errorText = pending.error;
    }
    return pending.reply;
}
