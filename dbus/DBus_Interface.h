#pragma once

class GDBusInterfaceBase;

namespace com::orvanta::dbus {

// One object waiting to be configured from the command line once the bus
// name is owned. The vector is the process's own, not a copy.
struct DBus_Interface
{
    GDBusInterfaceBase* iface;
    int argc;
    char** argv;
};

} // namespace com::orvanta::dbus
