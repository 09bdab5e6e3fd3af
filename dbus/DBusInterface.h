#pragma once

#include "GDBusInterfaceBase.h"
#include "com.orvanta.zectrl.h"
#include "dbus-adaptor.h"

#include <string>

// Binds "com.orvanta.plix.dBusAdaptor" at "/plix" to the engine: each
// handler names the caller by its unique bus name, calls exactly one engine
// operation and replies the engine's status as an ordinary reply, never as a
// bus error. All decisions are the engine's.
class DBusInterface : public GDBusInterfaceBase
{
public:
    static DBusInterface* getInstance();

    void connect_methods() override;
    // Loads the engine's configuration; runs once the bus name is owned.
    void configure(int argc, char** argv) override;

    gboolean transactionStart(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                              gboolean persistent);
    gboolean transactionStop(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation);

    gboolean setBoolValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                          const gchar* id, gboolean value);
    gboolean setIntValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                         const gchar* id, gint value);
    gboolean setDoubleValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                            const gchar* id, gdouble value);
    gboolean setStringValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                            const gchar* id, const gchar* value);
    gboolean setBoolValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                   const gchar* id, gboolean value);
    gboolean setIntValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                  const gchar* id, gint value);
    gboolean setDoubleValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* id, gdouble value);
    gboolean setStringValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* id, const gchar* value);

    gboolean getBoolValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                          const gchar* id);
    gboolean getIntValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                         const gchar* id);
    gboolean getDoubleValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                            const gchar* id);
    gboolean getStringValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                            const gchar* id);
    gboolean getBoolValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                   const gchar* id);
    gboolean getIntValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                  const gchar* id);
    gboolean getDoubleValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* id);
    gboolean getStringValueTransient(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                     const gchar* id);

    gboolean verify(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation, GVariant* value,
                    const gchar* id);

    // Handler of the control panel's "applet-changed" signal: logs only.
    void applet_changed(OrvantaZectrl* proxy, int id);

    // Signal-signature wrappers that reach the singleton; these are what
    // connect_methods() connects.
    static gboolean static_transactionStart(PlixDBusAdaptor* skeleton,
                                            GDBusMethodInvocation* invocation, gboolean persistent,
                                            gpointer userData);
    static gboolean static_transactionStop(PlixDBusAdaptor* skeleton,
                                           GDBusMethodInvocation* invocation, gpointer userData);
    static gboolean static_setBoolValue(PlixDBusAdaptor* skeleton,
                                        GDBusMethodInvocation* invocation, const gchar* id,
                                        gboolean value, gpointer userData);
    static gboolean static_setIntValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* id, gint value, gpointer userData);
    static gboolean static_setDoubleValue(PlixDBusAdaptor* skeleton,
                                          GDBusMethodInvocation* invocation, const gchar* id,
                                          gdouble value, gpointer userData);
    static gboolean static_setStringValue(PlixDBusAdaptor* skeleton,
                                          GDBusMethodInvocation* invocation, const gchar* id,
                                          const gchar* value, gpointer userData);
    static gboolean static_setBoolValueTransient(PlixDBusAdaptor* skeleton,
                                                 GDBusMethodInvocation* invocation, const gchar* id,
                                                 gboolean value, gpointer userData);
    static gboolean static_setIntValueTransient(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation, const gchar* id,
                                                gint value, gpointer userData);
    static gboolean static_setDoubleValueTransient(PlixDBusAdaptor* skeleton,
                                                   GDBusMethodInvocation* invocation,
                                                   const gchar* id, gdouble value,
                                                   gpointer userData);
    static gboolean static_setStringValueTransient(PlixDBusAdaptor* skeleton,
                                                   GDBusMethodInvocation* invocation,
                                                   const gchar* id, const gchar* value,
                                                   gpointer userData);
    static gboolean static_getBoolValue(PlixDBusAdaptor* skeleton,
                                        GDBusMethodInvocation* invocation, const gchar* id,
                                        gpointer userData);
    static gboolean static_getIntValue(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                       const gchar* id, gpointer userData);
    static gboolean static_getDoubleValue(PlixDBusAdaptor* skeleton,
                                          GDBusMethodInvocation* invocation, const gchar* id,
                                          gpointer userData);
    static gboolean static_getStringValue(PlixDBusAdaptor* skeleton,
                                          GDBusMethodInvocation* invocation, const gchar* id,
                                          gpointer userData);
    static gboolean static_getBoolValueTransient(PlixDBusAdaptor* skeleton,
                                                 GDBusMethodInvocation* invocation, const gchar* id,
                                                 gpointer userData);
    static gboolean static_getIntValueTransient(PlixDBusAdaptor* skeleton,
                                                GDBusMethodInvocation* invocation, const gchar* id,
                                                gpointer userData);
    static gboolean static_getDoubleValueTransient(PlixDBusAdaptor* skeleton,
                                                   GDBusMethodInvocation* invocation,
                                                   const gchar* id, gpointer userData);
    static gboolean static_getStringValueTransient(PlixDBusAdaptor* skeleton,
                                                   GDBusMethodInvocation* invocation,
                                                   const gchar* id, gpointer userData);
    static gboolean static_verify(PlixDBusAdaptor* skeleton, GDBusMethodInvocation* invocation,
                                  GVariant* value, const gchar* id, gpointer userData);
    static void static_applet_changed(OrvantaZectrl* proxy, int id, gpointer userData = nullptr);

    // The caller's unique bus name: the client as the engine knows it.
    static std::string clientOf(GDBusMethodInvocation* invocation);

private:
    DBusInterface();
    static int verifyVariant(const std::string& client, const std::string& id, GVariant* candidate);

    static DBusInterface* dBusIntfInstance;
};
