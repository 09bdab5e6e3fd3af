#include "ComOrvantaDBusInterface.h"

#include "PlixLog.h"

ComOrvantaDBusInterface* ComOrvantaDBusInterface::instance = nullptr;

ComOrvantaDBusInterface::ComOrvantaDBusInterface()
    : GDBusInterfaceBase(reinterpret_cast<GTypeInstance*>(orvanta_dbus_skeleton_new()))
{
}

ComOrvantaDBusInterface* ComOrvantaDBusInterface::getInstance()
{
    if (instance == nullptr) {
        instance = new ComOrvantaDBusInterface();
    }
    return instance;
}

void ComOrvantaDBusInterface::connect_methods()
{
    // GObject accepts "_" and "-" alike in signal names.
    g_signal_connect(getAdaptor(), "handle_quit", G_CALLBACK(static_Quit), nullptr);
    g_signal_connect(getAdaptor(), "handle-init", G_CALLBACK(static_Init), nullptr);
}

gboolean ComOrvantaDBusInterface::Init(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation)
{
    return answer(skeleton, invocation, "Init() Method invoked by DBus\n");
}

gboolean ComOrvantaDBusInterface::Quit(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation)
{
    return answer(skeleton, invocation, "Quit() Method invoked by DBus\n");
}

gboolean ComOrvantaDBusInterface::static_Init(OrvantaDbus* skeleton,
                                              GDBusMethodInvocation* invocation, gpointer)
{
    return getInstance()->Init(skeleton, invocation);
}

gboolean ComOrvantaDBusInterface::static_Quit(OrvantaDbus* skeleton,
                                              GDBusMethodInvocation* invocation, gpointer)
{
    return getInstance()->Quit(skeleton, invocation);
}

gboolean ComOrvantaDBusInterface::answer(OrvantaDbus* skeleton, GDBusMethodInvocation* invocation,
                                         const char* text)
{
    // The text carries its own line feed, so the log shows the line followed
    // by an empty one. Both methods reply empty; one completion serves both.
    plixLog(LOG_INFO, "%s", text);
    orvanta_dbus_complete_quit(skeleton, invocation);
    return TRUE;
}
