// The Linux build of sysconfig_clint_notify_init.
#include "sysconfig.h"

#include <gtest/gtest.h>

TEST(SysconfigClintNotifyInitTest, AnswersZeroAndPrintsNothing)
{
    testing::internal::CaptureStdout();
    int answer = sysconfig_clint_notify_init();
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ(0, answer);
}
