#pragma once

#include "DBus_Interface.h"

#include <gio/gio.h>

#include <string>
#include <vector>

class GDBusInterfaceBase;

namespace com::orvanta::dbus {

// A bus the service can publish objects on. All state is class-wide, so a
// handle is cheap to make and drop.
class OrvantaDBusType
{
public:
    virtual guint registerService(const std::string& name, GMainLoop* loop) = 0;
    virtual bool registerObject(const std::string& path, GDBusInterfaceBase* iface) = 0;
    virtual ~OrvantaDBusType();

    // Records an object to be configured with the command line after the
    // bus name has been acquired and every object exported.
    static void set_configure_options(GDBusInterfaceBase* iface, int argc, char** argv);

    // Id of the start-up semaphore set while a daemon's parent waits for
    // this process; -1 when the process was not daemonized.
    static int mSemid;
    // The process layer's half of that handshake: wakes the waiting parent,
    // runs between (if any) and removes the set. Given together with mSemid,
    // so the bus layer needs nothing of daemon mode but this.
    using ParentRelease = void (*)(int semid, void (*between)());
    static ParentRelease mReleaseParent;
    static std::vector<DBus_Interface> m_configureable_interfaces;

protected:
    static void configure_interfaces();
};

} // namespace com::orvanta::dbus
