#include "GDBusInterfaceBase.h"

#include "com.orvanta.dbus.h"

#include <gtest/gtest.h>

namespace {
class PlainInterface : public GDBusInterfaceBase
{
public:
    explicit PlainInterface(GTypeInstance* adaptor) : GDBusInterfaceBase(adaptor) {}

    void connect_methods() override {}
};
} // namespace

TEST(GDBusInterfaceBaseTest, GetAdaptorAnswersTheSkeletonGivenAtConstruction)
{
    auto* skeleton = reinterpret_cast<GTypeInstance*>(orvanta_dbus_skeleton_new());
    PlainInterface iface(skeleton);
    EXPECT_EQ(iface.getAdaptor(), skeleton);
}

TEST(GDBusInterfaceBaseTest, DefaultConfigureLeavesArgumentsAndOutputAlone)
{
    PlainInterface iface(reinterpret_cast<GTypeInstance*>(orvanta_dbus_skeleton_new()));
    char program[] = "dbus-ex-plix";
    char option[] = "-h";
    char* argv[] = {program, option, nullptr};
    testing::internal::CaptureStdout();
    iface.configure(2, argv);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(argv[1], option);
}
