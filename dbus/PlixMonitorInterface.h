#pragma once

#include "GDBusInterfaceBase.h"
#include "plix-monitor.h"

#include <functional>
#include <string>
#include <vector>

// "com.orvanta.plix.Monitor" at "/plix", beside the configuration interface:
// the list of values with their types, many transient reads or one whole
// transaction in a single call (or one kept only if it is confirmed in time),
// the store files that could not be written, and the signal ValuesChanged
// after every change that took effect. Every
// answer comes from the engine's public operations, so codes and log lines
// are the engine's own; the signal carries XML-IDs only, never values, since
// the system bus is shared.
//
// It is published only once the engine is configured: its configure() runs
// after the configuration interface's and exports it on that interface's
// connection and path, so the configuration interface and its start-up are
// untouched.
class PlixMonitorInterface : public GDBusInterfaceBase
{
public:
    static constexpr const char* interfaceName = "com.orvanta.plix.Monitor";
    // Apply's answer for a change that took effect but that a store file it
    // touched does not hold yet: the configuration interface answers 0 for it.
    static constexpr int notStoredStatus = 17;

    static PlixMonitorInterface* getInstance();

    void connect_methods() override;
    void configure(int argc, char** argv) override;

    gboolean listValues(PlixMonitor* skeleton, GDBusMethodInvocation* invocation);
    gboolean getValues(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                       const gchar* const* ids);
    gboolean apply(PlixMonitor* skeleton, GDBusMethodInvocation* invocation, GVariant* changes,
                   gboolean persistent);
    gboolean storeStatus(PlixMonitor* skeleton, GDBusMethodInvocation* invocation);
    gboolean applyConfirmed(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                            GVariant* changes, guint seconds);
    gboolean confirm(PlixMonitor* skeleton, GDBusMethodInvocation* invocation, const gchar* token);
    gboolean cancel(PlixMonitor* skeleton, GDBusMethodInvocation* invocation, const gchar* token);
    gboolean pending(PlixMonitor* skeleton, GDBusMethodInvocation* invocation);
    void valuesChanged(const std::vector<std::string>& xmlIds, bool persistent);

    static gboolean static_listValues(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                      gpointer userData);
    static gboolean static_getValues(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* const* ids, gpointer userData);
    static gboolean static_apply(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                 GVariant* changes, gboolean persistent, gpointer userData);
    static gboolean static_storeStatus(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                       gpointer userData);
    static gboolean static_applyConfirmed(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                          GVariant* changes, guint seconds, gpointer userData);
    static gboolean static_confirm(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                   const gchar* token, gpointer userData);
    static gboolean static_cancel(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                  const gchar* token, gpointer userData);
    static gboolean static_pending(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                   gpointer userData);

private:
    // Ends a transaction whose sets all succeeded; names a store file the
    // commit could not write in unstoredFile.
    using Stop = std::function<int(const std::string& client, std::string& unstoredFile)>;

    PlixMonitorInterface();
    // The transaction of one Apply: start, one set per change in the order
    // given, stop. Names the change whose set failed in failedId, or the
    // store file that the commit could not write.
    static int applyChanges(const std::string& client, GVariant* changes, bool persistent,
                            std::string& failedId, const Stop& stop);
    static bool allSettable(GVariant* changes, std::string& refusedId);
    static gboolean emitValuesChanged(gpointer arguments);

    static PlixMonitorInterface* instance;
};
