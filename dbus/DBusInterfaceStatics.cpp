#include "DBusInterface.h"

// The handler-signal adapters: GObject calls these plain functions, each
// fetches the singleton and hands the call to its member.

gboolean DBusInterface::static_transactionStart(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation,
                                                gboolean persistent, gpointer)
{
    return getInstance()->transactionStart(skeleton, invocation, persistent);
}

gboolean DBusInterface::static_transactionStop(PlixDBusAdaptor* skeleton,
                                               GDBusMethodInvocation* invocation, gpointer)
{
    return getInstance()->transactionStop(skeleton, invocation);
}

gboolean DBusInterface::static_setBoolValue(PlixDBusAdaptor* skeleton,
                                            GDBusMethodInvocation* invocation, const gchar* id,
                                            gboolean value, gpointer)
{
    return getInstance()->setBoolValue(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setIntValue(PlixDBusAdaptor* skeleton,
                                           GDBusMethodInvocation* invocation, const gchar* id,
                                           gint value, gpointer)
{
    return getInstance()->setIntValue(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setDoubleValue(PlixDBusAdaptor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* id,
                                              gdouble value, gpointer)
{
    return getInstance()->setDoubleValue(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setStringValue(PlixDBusAdaptor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* id,
                                              const gchar* value, gpointer)
{
    return getInstance()->setStringValue(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setBoolValueTransient(PlixDBusAdaptor* skeleton,
                                                     GDBusMethodInvocation* invocation,
                                                     const gchar* id, gboolean value, gpointer)
{
    return getInstance()->setBoolValueTransient(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setIntValueTransient(PlixDBusAdaptor* skeleton,
                                                    GDBusMethodInvocation* invocation,
                                                    const gchar* id, gint value, gpointer)
{
    return getInstance()->setIntValueTransient(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setDoubleValueTransient(PlixDBusAdaptor* skeleton,
                                                       GDBusMethodInvocation* invocation,
                                                       const gchar* id, gdouble value, gpointer)
{
    return getInstance()->setDoubleValueTransient(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_setStringValueTransient(PlixDBusAdaptor* skeleton,
                                                       GDBusMethodInvocation* invocation,
                                                       const gchar* id, const gchar* value,
                                                       gpointer)
{
    return getInstance()->setStringValueTransient(skeleton, invocation, id, value);
}

gboolean DBusInterface::static_getBoolValue(PlixDBusAdaptor* skeleton,
                                            GDBusMethodInvocation* invocation, const gchar* id,
                                            gpointer)
{
    return getInstance()->getBoolValue(skeleton, invocation, id);
}

gboolean DBusInterface::static_getIntValue(PlixDBusAdaptor* skeleton,
                                           GDBusMethodInvocation* invocation, const gchar* id,
                                           gpointer)
{
    return getInstance()->getIntValue(skeleton, invocation, id);
}

gboolean DBusInterface::static_getDoubleValue(PlixDBusAdaptor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* id,
                                              gpointer)
{
    return getInstance()->getDoubleValue(skeleton, invocation, id);
}

gboolean DBusInterface::static_getStringValue(PlixDBusAdaptor* skeleton,
                                              GDBusMethodInvocation* invocation, const gchar* id,
                                              gpointer)
{
    return getInstance()->getStringValue(skeleton, invocation, id);
}

gboolean DBusInterface::static_getBoolValueTransient(PlixDBusAdaptor* skeleton,
                                                     GDBusMethodInvocation* invocation,
                                                     const gchar* id, gpointer)
{
    return getInstance()->getBoolValueTransient(skeleton, invocation, id);
}

gboolean DBusInterface::static_getIntValueTransient(PlixDBusAdaptor* skeleton,
                                                    GDBusMethodInvocation* invocation,
                                                    const gchar* id, gpointer)
{
    return getInstance()->getIntValueTransient(skeleton, invocation, id);
}

gboolean DBusInterface::static_getDoubleValueTransient(PlixDBusAdaptor* skeleton,
                                                       GDBusMethodInvocation* invocation,
                                                       const gchar* id, gpointer)
{
    return getInstance()->getDoubleValueTransient(skeleton, invocation, id);
}

gboolean DBusInterface::static_getStringValueTransient(PlixDBusAdaptor* skeleton,
                                                       GDBusMethodInvocation* invocation,
                                                       const gchar* id, gpointer)
{
    return getInstance()->getStringValueTransient(skeleton, invocation, id);
}

gboolean DBusInterface::static_verify(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                      GVariant* value, const gchar* id, gpointer)
{
    return getInstance()->verify(skeleton, invocation, value, id);
}

void DBusInterface::static_applet_changed(OrvantaZectrl* proxy, int id, gpointer)
{
    getInstance()->applet_changed(proxy, id);
}
