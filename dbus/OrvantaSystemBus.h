#pragma once

#include "OrvantaDBusType.h"

namespace com::orvanta::dbus {

// The system bus: collects objects with their paths, owns the service's
// well-known name and exports the objects once the name is ours. In daemon
// mode it also releases the waiting parent at that point.
class OrvantaSystemBus : public OrvantaDBusType
{
public:
    guint registerService(const std::string& name, GMainLoop* loop) override;
    bool registerObject(const std::string& path, GDBusInterfaceBase* iface) override;
    ~OrvantaSystemBus() override;

    static void on_name_acquired(GDBusConnection* connection, const gchar* name, gpointer loop);
    static void on_name_lost(GDBusConnection* connection, const gchar* name, gpointer loop);
    static void on_name_acquired_sem_locked(GDBusConnection* connection, const gchar* name,
                                            gpointer loop);
    static void on_name_lost_sem_locked(GDBusConnection* connection, const gchar* name,
                                        gpointer loop);

    // m_interfaces[i] is published at m_path[i].
    static std::vector<std::string> m_path;
    static std::vector<GDBusInterfaceBase*> m_interfaces;

private:
    static void export_interfaces(GDBusConnection* connection);
};

} // namespace com::orvanta::dbus
