#pragma once

#include "OrvantaSystemBus.h"

namespace com::orvanta::dbus {

// Hands out bus handles; the entry code asks it before each use of the bus.
class OrvantaDBusHandler
{
public:
    virtual ~OrvantaDBusHandler();

    OrvantaSystemBus systemBus();
};

} // namespace com::orvanta::dbus
