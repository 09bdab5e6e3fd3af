#include "PlixctlStatus.h"

#include <gtest/gtest.h>

TEST(PlixctlStatusTest, SuccessAndReplacedSetExit0)
{
    EXPECT_EQ(PlixctlStatus::exitStatusOf(0), 0);
    EXPECT_EQ(PlixctlStatus::exitStatusOf(1), 0);
}

TEST(PlixctlStatusTest, EveryCodeOfTheServiceHasItsExitStatus)
{
    const std::vector<std::pair<int, int>> expected{
        {4, 3},   {8, 3},  {9, 4},   {11, 5}, {200, 5}, {203, 5}, {204, 5}, {205, 5}, {206, 5},
        {207, 5}, {15, 6}, {201, 1}, {10, 7}, {13, 7},  {401, 7}, {402, 7}, {17, 9}};
    for (const auto& [code, status] : expected) {
        EXPECT_EQ(PlixctlStatus::exitStatusOf(code), status) << "code " << code;
    }
}

TEST(PlixctlStatusTest, UnknownCodeExits8)
{
    EXPECT_EQ(PlixctlStatus::exitStatusOf(77), 8);
    EXPECT_EQ(PlixctlStatus::meaningOf(77), "failure reported by the service");
}

TEST(PlixctlStatusTest, MeaningsAreTheServicesOwn)
{
    EXPECT_EQ(PlixctlStatus::meaningOf(8), "busy: another transaction is open");
    EXPECT_EQ(PlixctlStatus::meaningOf(15), "the value lives in a read-only file");
    EXPECT_EQ(PlixctlStatus::meaningOf(201), "verify: the candidate differs");
}
