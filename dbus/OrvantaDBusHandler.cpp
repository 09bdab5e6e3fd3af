#include "OrvantaDBusHandler.h"

namespace com::orvanta::dbus {

OrvantaDBusHandler::~OrvantaDBusHandler() = default;

OrvantaSystemBus OrvantaDBusHandler::systemBus()
{
    return OrvantaSystemBus();
}

} // namespace com::orvanta::dbus
