#include "PlixIntegrationTest.h"

using StartupTrigger = PlixIntegrationTest;

TEST_F(StartupTrigger, DashSRunsTheStartActionsBeforeServing)
{
    ASSERT_NE(startServing({"-s"}), nullptr);
    EXPECT_EQ(fileText("startup-value.out"), "value hello\n");
    EXPECT_EQ(fileText("startup-dataset.out"), "dataset hello\n");
    // The network action ran too, against the fake killall only.
    EXPECT_EQ(killallLog(), "killall -SIGKILL udhcpc\n");
}

TEST_F(StartupTrigger, WithoutDashSNoActionRunsAtStart)
{
    ASSERT_NE(startServing(), nullptr);
    EXPECT_FALSE(dir().exists("startup-value.out"));
    EXPECT_FALSE(dir().exists("startup-dataset.out"));
    EXPECT_EQ(killallLog(), "");
}
