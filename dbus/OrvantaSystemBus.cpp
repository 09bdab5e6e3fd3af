#include "OrvantaSystemBus.h"

#include "GDBusInterfaceBase.h"
#include "PlixExit.h"
#include "PlixLog.h"

namespace com::orvanta::dbus {

namespace {
const char* const nameLostMessage = "Could not register servicename on bus";
}

std::vector<std::string> OrvantaSystemBus::m_path;
std::vector<GDBusInterfaceBase*> OrvantaSystemBus::m_interfaces;

OrvantaSystemBus::~OrvantaSystemBus() = default;

bool OrvantaSystemBus::registerObject(const std::string& path, GDBusInterfaceBase* iface)
{
    m_path.push_back(path);
    m_interfaces.push_back(iface);
    return true;
}

guint OrvantaSystemBus::registerService(const std::string& name, GMainLoop* loop)
{
    if (m_path.empty() || m_interfaces.empty()) {
        plixLog(LOG_ERR, "No Interfaces Registered");
        plixExit(3);
    }
    // Another instance asking with "replace" may take the name over; this
    // one then ends through the name-lost callback.
    const auto flags = static_cast<GBusNameOwnerFlags>(G_BUS_NAME_OWNER_FLAGS_ALLOW_REPLACEMENT |
                                                       G_BUS_NAME_OWNER_FLAGS_REPLACE);
    const bool parentWaits = mSemid >= 0;
    return g_bus_own_name(G_BUS_TYPE_SYSTEM, name.c_str(), flags, nullptr,
                          parentWaits ? on_name_acquired_sem_locked : on_name_acquired,
                          parentWaits ? on_name_lost_sem_locked : on_name_lost, loop, nullptr);
}

void OrvantaSystemBus::export_interfaces(GDBusConnection* connection)
{
    // at() on purpose: a path list shorter than the object list is a
    // programming error that must end the process.
    for (std::size_t i = 0; i < m_interfaces.size(); ++i) {
        GDBusInterfaceBase* iface = m_interfaces.at(i);
        iface->connect_methods();
        g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(iface->getAdaptor()), connection,
                                         m_path.at(i).c_str(), nullptr);
    }
}

void OrvantaSystemBus::on_name_acquired(GDBusConnection* connection, const gchar*, gpointer)
{
    export_interfaces(connection);
    configure_interfaces();
}

void OrvantaSystemBus::on_name_acquired_sem_locked(GDBusConnection* connection, const gchar*,
                                                   gpointer)
{
    // The parent may report success as soon as the objects are visible;
    // configuring happens while it is being released.
    export_interfaces(connection);
    mReleaseParent(mSemid, configure_interfaces);
    // The handshake removed the set: no parent waits any more.
    mSemid = -1;
}

void OrvantaSystemBus::on_name_lost(GDBusConnection*, const gchar*, gpointer)
{
    plixLog(LOG_ERR, "%s", nameLostMessage);
    plixExit(2);
}

void OrvantaSystemBus::on_name_lost_sem_locked(GDBusConnection*, const gchar*, gpointer)
{
    plixLog(LOG_ERR, "%s", nameLostMessage);
    // Only a name lost before it was ever acquired still has the parent
    // waiting; after the handshake the set is gone.
    if (mSemid >= 0) {
        mReleaseParent(mSemid, nullptr);
    }
    plixExit(2);
}

} // namespace com::orvanta::dbus
