#include "OrvantaDBusType.h"

#include "GDBusInterfaceBase.h"

#include <gtest/gtest.h>

using com::orvanta::dbus::OrvantaDBusType;

namespace {
class NoInterface : public GDBusInterfaceBase
{
public:
    NoInterface() : GDBusInterfaceBase(nullptr) {}

    void connect_methods() override {}
};
} // namespace

TEST(OrvantaDBusTypeTest, ProcessIsNotADaemonUntilToldOtherwise)
{
    EXPECT_EQ(OrvantaDBusType::mSemid, -1);
}

TEST(OrvantaDBusTypeTest, SetConfigureOptionsAppendsRecordsInOrderWithTheCallersVector)
{
    OrvantaDBusType::m_configureable_interfaces.clear();
    NoInterface first;
    NoInterface second;
    char program[] = "dbus-ex-plix";
    char* argv[] = {program, nullptr};
    OrvantaDBusType::set_configure_options(&first, 1, argv);
    OrvantaDBusType::set_configure_options(&second, 0, nullptr);
    ASSERT_EQ(OrvantaDBusType::m_configureable_interfaces.size(), 2u);
    EXPECT_EQ(OrvantaDBusType::m_configureable_interfaces[0].iface, &first);
    EXPECT_EQ(OrvantaDBusType::m_configureable_interfaces[0].argc, 1);
    EXPECT_EQ(OrvantaDBusType::m_configureable_interfaces[0].argv, argv);
    EXPECT_EQ(OrvantaDBusType::m_configureable_interfaces[1].iface, &second);
    OrvantaDBusType::m_configureable_interfaces.clear();
}
