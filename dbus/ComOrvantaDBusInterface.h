#pragma once

#include "GDBusInterfaceBase.h"
#include "com.orvanta.dbus.h"

// The service's control interface "com.orvanta.dbus" at "/ctrl". Init and
// Quit only report that they were called: neither re-reads the configuration
// nor stops the service.
class ComOrvantaDBusInterface : public GDBusInterfaceBase
{
public:
    static ComOrvantaDBusInterface* getInstance();

    void connect_methods() override;

    gboolean Init(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation);
    gboolean Quit(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation);
    static gboolean static_Init(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation,
                                gpointer userData);
    static gboolean static_Quit(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation,
                                gpointer userData);

private:
    ComOrvantaDBusInterface();
    static gboolean answer(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation,
                           const char* text);

    static ComOrvantaDBusInterface* instance;
};
