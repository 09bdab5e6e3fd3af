#include "DBusInterface.h"

#include "Plix.h"
#include "PlixLog.h"

#include <utility>

namespace {
// What the engine answers when a value is asked for as another type; a
// candidate of a type no value can have gets the same answer.
constexpr int wrongTypeStatus = 11;
} // namespace

DBusInterface* DBusInterface::dBusIntfInstance = nullptr;

DBusInterface::DBusInterface()
    : GDBusInterfaceBase(reinterpret_cast<GTypeInstance*>(plix_dbus_adaptor_skeleton_new()))
{
}

DBusInterface* DBusInterface::getInstance()
{
    if (dBusIntfInstance == nullptr) {
        dBusIntfInstance = new DBusInterface();
    }
    return dBusIntfInstance;
}

void DBusInterface::connect_methods()
{
    const std::pair<const char*, GCallback> handlers[] = {
        {"handle-transactionstart", G_CALLBACK(static_transactionStart)},
        {"handle-transactionstop", G_CALLBACK(static_transactionStop)},
        {"handle-set-bool-value-transient", G_CALLBACK(static_setBoolValueTransient)},
        {"handle-set-int-value-transient", G_CALLBACK(static_setIntValueTransient)},
        {"handle-set-double-value-transient", G_CALLBACK(static_setDoubleValueTransient)},
        {"handle-set-string-value-transient", G_CALLBACK(static_setStringValueTransient)},
        {"handle-set-string-value", G_CALLBACK(static_setStringValue)},
        {"handle-set-bool-value", G_CALLBACK(static_setBoolValue)},
        {"handle-set-int-value", G_CALLBACK(static_setIntValue)},
        {"handle-set-double-value", G_CALLBACK(static_setDoubleValue)},
        {"handle-get-int-value", G_CALLBACK(static_getIntValue)},
        {"handle-get-double-value", G_CALLBACK(static_getDoubleValue)},
        {"handle-get-string-value", G_CALLBACK(static_getStringValue)},
        {"handle-get-bool-value", G_CALLBACK(static_getBoolValue)},
        {"handle-get-int-value-transient", G_CALLBACK(static_getIntValueTransient)},
        {"handle-get-string-value-transient", G_CALLBACK(static_getStringValueTransient)},
        {"handle-get-bool-value-transient", G_CALLBACK(static_getBoolValueTransient)},
        {"handle-get-double-value-transient", G_CALLBACK(static_getDoubleValueTransient)},
        {"handle-verify", G_CALLBACK(static_verify)},
    };
    for (const auto& handler : handlers) {
        g_signal_connect(getAdaptor(), handler.first, handler.second, nullptr);
    }
}

void DBusInterface::configure(int argc, char** argv)
{
    Plix::getInstance()->configure(argc, argv);
}

std::string DBusInterface::clientOf(GDBusMethodInvocation* invocation)
{
    // A message bus always names the sender; only a direct peer connection
    // has none, and such a peer is nobody in particular.
    const gchar* sender = g_dbus_method_invocation_get_sender(invocation);
    return sender != nullptr ? sender : "";
}

gboolean DBusInterface::transactionStart(PlixDBusAdaptor* skeleton,
                                         GDBusMethodInvocation* invocation, gboolean persistent)
{
    const int status = Plix::getInstance()->transactionStart(clientOf(invocation), persistent);
    plix_dbus_adaptor_complete_transactionstart(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::transactionStop(PlixDBusAdaptor* skeleton,
                                        GDBusMethodInvocation* invocation)
{
    const int status = Plix::getInstance()->transactionStop(clientOf(invocation));
    plix_dbus_adaptor_complete_transactionstop(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setBoolValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* id, gboolean value)
{
    const int status = Plix::getInstance()->setBoolValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_bool_value(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setIntValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                    const gchar* id, gint value)
{
    const int status = Plix::getInstance()->setIntValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_int_value(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setDoubleValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* id, gdouble value)
{
    const int status = Plix::getInstance()->setDoubleValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_double_value(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setStringValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* id, const gchar* value)
{
    const int status = Plix::getInstance()->setStringValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_string_value(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setBoolValueTransient(PlixDBusAdaptor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* id,
                                              gboolean value)
{
    const int status = Plix::getInstance()->setBoolValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_bool_value_transient(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setIntValueTransient(PlixDBusAdaptor* skeleton,
                                             GDBusMethodInvocation* invocation, const gchar* id,
                                             gint value)
{
    const int status = Plix::getInstance()->setIntValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_int_value_transient(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setDoubleValueTransient(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation, const gchar* id,
                                                gdouble value)
{
    const int status =
        Plix::getInstance()->setDoubleValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_double_value_transient(skeleton, invocation, status);
    return TRUE;
}

gboolean DBusInterface::setStringValueTransient(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation, const gchar* id,
                                                const gchar* value)
{
    const int status =
        Plix::getInstance()->setStringValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_set_string_value_transient(skeleton, invocation, status);
    return TRUE;
}

// The out-slots of the getters are zeroed so that a failed read replies a
// defined value; callers look at it only when the status is 0.

gboolean DBusInterface::getBoolValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* id)
{
    bool value = false;
    const int status = Plix::getInstance()->getBoolValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_bool_value(skeleton, invocation, value, status);
    return TRUE;
}

gboolean DBusInterface::getIntValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                    const gchar* id)
{
    int value = 0;
    const int status = Plix::getInstance()->getIntValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_int_value(skeleton, invocation, value, status);
    return TRUE;
}

gboolean DBusInterface::getDoubleValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* id)
{
    double value = 0.0;
    const int status = Plix::getInstance()->getDoubleValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_double_value(skeleton, invocation, value, status);
    return TRUE;
}

gboolean DBusInterface::getStringValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* id)
{
    std::string value;
    const int status = Plix::getInstance()->getStringValue(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_string_value(skeleton, invocation, value.c_str(), status);
    return TRUE;
}

gboolean DBusInterface::getBoolValueTransient(PlixDBusAdaptor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* id)
{
    bool value = false;
    const int status = Plix::getInstance()->getBoolValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_bool_value_transient(skeleton, invocation, status, value);
    return TRUE;
}

gboolean DBusInterface::getIntValueTransient(PlixDBusAdaptor* skeleton,
                                             GDBusMethodInvocation* invocation, const gchar* id)
{
    int value = 0;
    const int status = Plix::getInstance()->getIntValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_int_value_transient(skeleton, invocation, status, value);
    return TRUE;
}

gboolean DBusInterface::getDoubleValueTransient(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation, const gchar* id)
{
    double value = 0.0;
    const int status =
        Plix::getInstance()->getDoubleValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_double_value_transient(skeleton, invocation, status, value);
    return TRUE;
}

gboolean DBusInterface::getStringValueTransient(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation, const gchar* id)
{
    std::string value;
    const int status =
        Plix::getInstance()->getStringValueTransient(clientOf(invocation), id, value);
    plix_dbus_adaptor_complete_get_string_value_transient(skeleton, invocation, status,
                                                          value.c_str());
    return TRUE;
}

gboolean DBusInterface::verify(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                               GVariant* value, const gchar* id)
{
    GVariant* candidate = g_variant_get_variant(value);
    const int status = verifyVariant(clientOf(invocation), id, candidate);
    g_variant_unref(candidate);
    plix_dbus_adaptor_complete_verify(skeleton, invocation, status);
    return TRUE;
}

int DBusInterface::verifyVariant(const std::string& client, const std::string& id,
                                 GVariant* candidate)
{
    Plix* engine = Plix::getInstance();
    const std::string type = g_variant_get_type_string(candidate);
    if (type == "s") {
        return engine->verify(client, id, std::string(g_variant_get_string(candidate, nullptr)));
    }
    if (type == "i") {
        const int number = g_variant_get_int32(candidate);
        const int status = engine->verify(client, id, number);
        plixTrace("Int: %d\n", number);
        return status;
    }
    if (type == "b") {
        // A boolean candidate is compared as the number 0 or 1.
        return engine->verify(client, id, g_variant_get_boolean(candidate) ? 1 : 0);
    }
    if (type == "d") {
        return engine->verify(client, id, g_variant_get_double(candidate));
    }
    return wrongTypeStatus;
}

void DBusInterface::applet_changed(OrvantaZectrl*, int id)
{
    plixLog(LOG_INFO, "applet_changed with ID: %d", id);
}

// Signal-signature wrappers: each reaches the singleton and hands on.
