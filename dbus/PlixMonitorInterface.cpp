#include "PlixMonitorInterface.h"

#include "DBusInterface.h"
#include "Plix.h"
#include "PlixLog.h"
#include "PlixMonitorValues.h"

namespace {
// The engine's answer for a value asked for or offered as another type.
constexpr int wrongTypeStatus = 11;
// The engine's answer for a value that is not allowed.
constexpr int notAllowedStatus = 200;
} // namespace

PlixMonitorInterface* PlixMonitorInterface::instance = nullptr;

PlixMonitorInterface::PlixMonitorInterface()
    : GDBusInterfaceBase(reinterpret_cast<GTypeInstance*>(plix_monitor_skeleton_new()))
{
}

PlixMonitorInterface* PlixMonitorInterface::getInstance()
{
    if (instance == nullptr) {
        instance = new PlixMonitorInterface();
    }
    return instance;
}

void PlixMonitorInterface::connect_methods()
{
    g_signal_connect(getAdaptor(), "handle-list-values", G_CALLBACK(static_listValues), nullptr);
    g_signal_connect(getAdaptor(), "handle-get-values", G_CALLBACK(static_getValues), nullptr);
    g_signal_connect(getAdaptor(), "handle-apply", G_CALLBACK(static_apply), nullptr);
    g_signal_connect(getAdaptor(), "handle-store-status", G_CALLBACK(static_storeStatus), nullptr);
    g_signal_connect(getAdaptor(), "handle-apply-confirmed", G_CALLBACK(static_applyConfirmed),
                     nullptr);
    g_signal_connect(getAdaptor(), "handle-confirm", G_CALLBACK(static_confirm), nullptr);
    g_signal_connect(getAdaptor(), "handle-cancel", G_CALLBACK(static_cancel), nullptr);
    g_signal_connect(getAdaptor(), "handle-pending", G_CALLBACK(static_pending), nullptr);
}

void PlixMonitorInterface::configure(int, char**)
{
    auto* companion = G_DBUS_INTERFACE_SKELETON(DBusInterface::getInstance()->getAdaptor());
    GDBusConnection* connection = g_dbus_interface_skeleton_get_connection(companion);
    const gchar* path = g_dbus_interface_skeleton_get_object_path(companion);
    if (connection == nullptr || path == nullptr) {
        plixLog(LOG_ERR, "%s not exported: the configuration interface is not on the bus",
                interfaceName);
        return;
    }
    connect_methods();
    GError* error = nullptr;
    if (!g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(getAdaptor()), connection, path,
                                          &error)) {
        plixLog(LOG_ERR, "%s not exported: %s", interfaceName, error->message);
        g_error_free(error);
        return;
    }
    Plix::getInstance()->setChangeObserver(
        [this](const std::vector<std::string>& xmlIds, bool persistent) {
            valuesChanged(xmlIds, persistent);
        });
}

gboolean PlixMonitorInterface::listValues(PlixMonitor* skeleton, GDBusMethodInvocation* invocation)
{
    GVariantBuilder values;
    g_variant_builder_init(&values, G_VARIANT_TYPE("a(sssb)"));
    for (const auto& entry : Plix::getInstance()->listValues()) {
        g_variant_builder_add(&values, "(sssb)", entry.xmlId.c_str(), entry.valueType.c_str(),
                              entry.fileName.c_str(), entry.readOnly);
    }
    plix_monitor_complete_list_values(skeleton, invocation, g_variant_builder_end(&values));
    return TRUE;
}

// Stops at the first read that fails and then answers its code with no
// values at all, as a transient getter answers no value on failure.
gboolean PlixMonitorInterface::getValues(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                         const gchar* const* ids)
{
    const std::string client = DBusInterface::clientOf(invocation);
    Plix& engine = *Plix::getInstance();
    GVariantBuilder values;
    g_variant_builder_init(&values, G_VARIANT_TYPE_VARDICT);
    int status = 0;
    for (std::size_t i = 0; status == 0 && ids[i] != nullptr; ++i) {
        GVariant* value = nullptr;
        status = PlixMonitorValues::readTransient(engine, client, ids[i], engine.dataTypeOf(ids[i]),
                                                  &value);
        if (status == 0) {
            g_variant_builder_add(&values, "{sv}", ids[i], value);
        }
    }
    GVariant* reply = g_variant_builder_end(&values);
    if (status != 0) {
        g_variant_unref(g_variant_ref_sink(reply));
        reply = g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0);
    }
    plix_monitor_complete_get_values(skeleton, invocation, status, reply);
    return TRUE;
}

gboolean PlixMonitorInterface::apply(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                     GVariant* changes, gboolean persistent)
{
    std::string failedId;
    const int status =
        applyChanges(DBusInterface::clientOf(invocation), changes, persistent, failedId,
                     [](const std::string& client, std::string& unstoredFile) {
                         return Plix::getInstance()->transactionStop(client, unstoredFile);
                     });
    plix_monitor_complete_apply(skeleton, invocation, status, failedId.c_str());
    return TRUE;
}

// A window out of range is refused before a transaction is started, so the
// engine logs nothing for it.
gboolean PlixMonitorInterface::applyConfirmed(PlixMonitor* skeleton,
                                              GDBusMethodInvocation* invocation, GVariant* changes,
                                              guint seconds)
{
    std::string failedId;
    std::string token;
    int status = notAllowedStatus;
    if (seconds < PlixConfirmation::shortestWindow || seconds > PlixConfirmation::longestWindow) {
        plixLog(LOG_WARNING, "A confirmation window of %u seconds is not allowed", seconds);
    } else {
        status = applyChanges(DBusInterface::clientOf(invocation), changes, true, failedId,
                              [seconds, &token](const std::string& client, std::string& unstored) {
                                  return Plix::getInstance()->transactionStopConfirmed(
                                      client, seconds, unstored, token);
                              });
    }
    plix_monitor_complete_apply_confirmed(skeleton, invocation, status, failedId.c_str(),
                                          token.c_str());
    return TRUE;
}

gboolean PlixMonitorInterface::confirm(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* token)
{
    plix_monitor_complete_confirm(skeleton, invocation,
                                  Plix::getInstance()->confirmation().confirm(token));
    return TRUE;
}

gboolean PlixMonitorInterface::cancel(PlixMonitor* skeleton, GDBusMethodInvocation* invocation,
                                      const gchar* token)
{
    plix_monitor_complete_cancel(skeleton, invocation,
                                 Plix::getInstance()->confirmation().cancel(token));
    return TRUE;
}

gboolean PlixMonitorInterface::pending(PlixMonitor* skeleton, GDBusMethodInvocation* invocation)
{
    const PlixConfirmation& confirmation = Plix::getInstance()->confirmation();
    const std::vector<std::string> ids = confirmation.ids();
    std::vector<const gchar*> names;
    names.reserve(ids.size() + 1);
    for (const std::string& id : ids) {
        names.push_back(id.c_str());
    }
    names.push_back(nullptr);
    plix_monitor_complete_pending(skeleton, invocation, confirmation.pending(),
                                  confirmation.secondsLeft(), names.data());
    return TRUE;
}

bool PlixMonitorInterface::allSettable(GVariant* changes, std::string& refusedId)
{
    GVariantIter iter;
    g_variant_iter_init(&iter, changes);
    const gchar* id = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(&iter, "{&sv}", &id, &value)) {
        const bool settable = PlixMonitorValues::settable(value);
        g_variant_unref(value);
        if (!settable) {
            refusedId = id;
            return false;
        }
    }
    return true;
}

// A set that fails has already ended the transaction in the engine, so only
// a transaction whose sets all succeeded is stopped; a set answering 1 (an
// earlier set of the same XML-ID replaced) succeeded.
int PlixMonitorInterface::applyChanges(const std::string& client, GVariant* changes,
                                       bool persistent, std::string& failedId, const Stop& stop)
{
    if (!allSettable(changes, failedId)) {
        return wrongTypeStatus;
    }
    Plix& engine = *Plix::getInstance();
    const int started = engine.transactionStart(client, persistent);
    if (started != 0) {
        return started;
    }
    GVariantIter iter;
    g_variant_iter_init(&iter, changes);
    const gchar* id = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(&iter, "{&sv}", &id, &value)) {
        const int status = PlixMonitorValues::set(engine, client, id, value);
        g_variant_unref(value);
        if (status != 0 && status != 1) {
            failedId = id;
            return status;
        }
    }
    std::string unstoredFile;
    const int stopped = stop(client, unstoredFile);
    if (stopped == 0 && !unstoredFile.empty()) {
        failedId = unstoredFile;
        return notStoredStatus;
    }
    return stopped;
}

gboolean PlixMonitorInterface::storeStatus(PlixMonitor* skeleton, GDBusMethodInvocation* invocation)
{
    const std::vector<PlixStoreFailure> failing = Plix::getInstance()->storeStatus();
    GVariantBuilder files;
    g_variant_builder_init(&files, G_VARIANT_TYPE("a(ss)"));
    for (const PlixStoreFailure& file : failing) {
        g_variant_builder_add(&files, "(ss)", file.path.c_str(), file.error.c_str());
    }
    plix_monitor_complete_store_status(skeleton, invocation, failing.empty(),
                                       g_variant_builder_end(&files));
    return TRUE;
}

// The signal leaves once the handler that caused it has sent its reply: the
// caller then waits for its answer only, not for the bus to route the
// signal first. Signals keep their order, and go before the next call is
// served.
void PlixMonitorInterface::valuesChanged(const std::vector<std::string>& xmlIds, bool persistent)
{
    std::vector<const gchar*> ids;
    ids.reserve(xmlIds.size());
    for (const std::string& id : xmlIds) {
        ids.push_back(id.c_str());
    }
    GVariant* arguments = g_variant_ref_sink(g_variant_new(
        "(@asb)", g_variant_new_strv(ids.data(), static_cast<gssize>(ids.size())), persistent));
    g_idle_add_full(G_PRIORITY_HIGH, emitValuesChanged, arguments,
                    [](gpointer data) { g_variant_unref(static_cast<GVariant*>(data)); });
}

gboolean PlixMonitorInterface::emitValuesChanged(gpointer arguments)
{
    const gchar** ids = nullptr;
    gboolean persistent = FALSE;
    g_variant_get(static_cast<GVariant*>(arguments), "(^a&sb)", &ids, &persistent);
    plix_monitor_emit_values_changed(PLIX_MONITOR(getInstance()->getAdaptor()), ids, persistent);
    g_free(ids);
    return G_SOURCE_REMOVE;
}

gboolean PlixMonitorInterface::static_listValues(PlixMonitor* skeleton,
                                                 GDBusMethodInvocation* invocation, gpointer)
{
    return getInstance()->listValues(skeleton, invocation);
}

gboolean PlixMonitorInterface::static_getValues(PlixMonitor* skeleton,
                                                GDBusMethodInvocation* invocation,
                                                const gchar* const* ids, gpointer)
{
    return getInstance()->getValues(skeleton, invocation, ids);
}

gboolean PlixMonitorInterface::static_apply(PlixMonitor* skeleton,
                                            GDBusMethodInvocation* invocation, GVariant* changes,
                                            gboolean persistent, gpointer)
{
    return getInstance()->apply(skeleton, invocation, changes, persistent);
}

gboolean PlixMonitorInterface::static_storeStatus(PlixMonitor* skeleton,
                                                  GDBusMethodInvocation* invocation, gpointer)
{
    return getInstance()->storeStatus(skeleton, invocation);
}

gboolean PlixMonitorInterface::static_applyConfirmed(PlixMonitor* skeleton,
                                                     GDBusMethodInvocation* invocation,
                                                     GVariant* changes, guint seconds, gpointer)
{
    return getInstance()->applyConfirmed(skeleton, invocation, changes, seconds);
}

gboolean PlixMonitorInterface::static_confirm(PlixMonitor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* token,
                                              gpointer)
{
    return getInstance()->confirm(skeleton, invocation, token);
}

gboolean PlixMonitorInterface::static_cancel(PlixMonitor* skeleton,
                                             GDBusMethodInvocation* invocation, const gchar* token,
                                             gpointer)
{
    return getInstance()->cancel(skeleton, invocation, token);
}

gboolean PlixMonitorInterface::static_pending(PlixMonitor* skeleton,
                                              GDBusMethodInvocation* invocation, gpointer)
{
    return getInstance()->pending(skeleton, invocation);
}
