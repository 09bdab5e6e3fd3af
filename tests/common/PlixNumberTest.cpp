#include "PlixNumber.h"

#include <gtest/gtest.h>

#include <climits>

TEST(PlixNumber, ReadsDecimalWithStrtolRules)
{
    EXPECT_EQ(plixStrtoInt("42"), 42);
    EXPECT_EQ(plixStrtoInt("  -7"), -7);
    EXPECT_EQ(plixStrtoInt("+3"), 3);
    EXPECT_EQ(plixStrtoInt("4x"), 4);
    EXPECT_EQ(plixStrtoInt("abc"), 0);
    EXPECT_EQ(plixStrtoInt(""), 0);
}

TEST(PlixNumber, ClampsToTheIntRangeAsOnTheDevice)
{
    EXPECT_EQ(plixStrtoInt("3000000000"), INT_MAX);
    EXPECT_EQ(plixStrtoInt("-3000000000"), INT_MIN);
    EXPECT_EQ(plixStrtoInt("99999999999999999999999"), INT_MAX);
    EXPECT_EQ(plixStrtoInt("2147483647"), INT_MAX);
    EXPECT_EQ(plixStrtoInt("-2147483648"), INT_MIN);
}
