#include "PlixSignalRecorder.h"

#include "PlixMonitorCalls.h"
#include "PlixWait.h"

PlixSignalRecorder::PlixSignalRecorder(const PlixBusClient& client)
    : mConnection(client.connection()),
      mSubscription(g_dbus_connection_signal_subscribe(
          mConnection, PlixBusClient::kServiceName, PlixMonitorCalls::kInterface, "ValuesChanged",
          PlixBusClient::kAdaptorPath, nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr))
{
    // The match rule travels ahead of this call on the same connection: once
    // the bus answers, it has the rule.
    client.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId",
                nullptr);
}

PlixSignalRecorder::~PlixSignalRecorder()
{
    g_dbus_connection_signal_unsubscribe(mConnection, mSubscription);
}

bool PlixSignalRecorder::waitFor(std::size_t count, std::chrono::milliseconds bound)
{
    return plixWaitUntil(
        [&] {
            while (g_main_context_iteration(nullptr, FALSE)) {
            }
            return mChanges.size() >= count;
        },
        bound);
}

void PlixSignalRecorder::onSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                  const gchar*, GVariant* parameters, gpointer self)
{
    Change change{{}, false};
    GVariantIter* iter = nullptr;
    gboolean persistent = FALSE;
    g_variant_get(parameters, "(asb)", &iter, &persistent);
    const gchar* id = nullptr;
    while (g_variant_iter_next(iter, "&s", &id)) {
        change.ids.emplace_back(id);
    }
    g_variant_iter_free(iter);
    change.persistent = persistent != FALSE;
    static_cast<PlixSignalRecorder*>(self)->mChanges.push_back(change);
}
