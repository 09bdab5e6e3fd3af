#include "OrvantaDBusHandler.h"

#include <gtest/gtest.h>

using com::orvanta::dbus::OrvantaDBusHandler;
using com::orvanta::dbus::OrvantaSystemBus;

TEST(OrvantaDBusHandlerTest, EveryHandleSharesTheRegisteredObjects)
{
    OrvantaSystemBus::m_path.clear();
    OrvantaSystemBus::m_interfaces.clear();
    OrvantaDBusHandler handler;
    handler.systemBus().registerObject("/ctrl", nullptr);
    handler.systemBus().registerObject("/plix", nullptr);
    EXPECT_EQ(OrvantaSystemBus::m_path, (std::vector<std::string>{"/ctrl", "/plix"}));
    EXPECT_EQ(OrvantaSystemBus::m_interfaces.size(), 2u);
    OrvantaSystemBus::m_path.clear();
    OrvantaSystemBus::m_interfaces.clear();
}
