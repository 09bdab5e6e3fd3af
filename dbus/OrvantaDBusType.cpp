#include "OrvantaDBusType.h"

#include "GDBusInterfaceBase.h"

namespace com::orvanta::dbus {

int OrvantaDBusType::mSemid = -1;
OrvantaDBusType::ParentRelease OrvantaDBusType::mReleaseParent = nullptr;
std::vector<DBus_Interface> OrvantaDBusType::m_configureable_interfaces;

OrvantaDBusType::~OrvantaDBusType() = default;

void OrvantaDBusType::set_configure_options(GDBusInterfaceBase* iface, int argc, char** argv)
{
    m_configureable_interfaces.push_back(DBus_Interface{iface, argc, argv});
}

void OrvantaDBusType::configure_interfaces()
{
    for (const DBus_Interface& record : m_configureable_interfaces) {
        record.iface->configure(record.argc, record.argv);
    }
}

} // namespace com::orvanta::dbus
