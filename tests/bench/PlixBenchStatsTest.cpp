#include "PlixBenchStats.h"

#include <gtest/gtest.h>

namespace {
PlixBenchStats oneToHundred()
{
    PlixBenchStats stats;
    for (int sample = 100; sample >= 1; --sample) {
        stats.add(sample);
    }
    return stats;
}
} // namespace

TEST(PlixBenchStatsTest, MinIsTheSmallestSample)
{
    EXPECT_DOUBLE_EQ(1.0, oneToHundred().min());
}

TEST(PlixBenchStatsTest, MedianIsTheMiddleOfTheSortedSamples)
{
    PlixBenchStats stats;
    stats.add(9);
    stats.add(1);
    stats.add(5);
    EXPECT_DOUBLE_EQ(5.0, stats.median());
}

TEST(PlixBenchStatsTest, P99IsNearTheTopOfTheSamples)
{
    EXPECT_DOUBLE_EQ(99.0, oneToHundred().p99());
}

TEST(PlixBenchStatsTest, NoSamplesSummariseAsZero)
{
    PlixBenchStats stats;
    EXPECT_TRUE(stats.empty());
    EXPECT_DOUBLE_EQ(0.0, stats.median());
}

TEST(PlixBenchStatsTest, RowOfATimeHasTheRatioOfMedianToFloor)
{
    testing::internal::CaptureStdout();
    PlixBenchStats::printRow("latency", 100, "Peer.Ping", "us", 10, 30, 90, 20);
    EXPECT_EQ("latency,100,Peer.Ping,us,10.0,30.0,90.0,20.0,1.50\n",
              testing::internal::GetCapturedStdout());
}

TEST(PlixBenchStatsTest, RowOfARateHasTheRatioOfFloorToMedian)
{
    testing::internal::CaptureStdout();
    PlixBenchStats::printRow("throughput", 100, "1 connections", "calls/s", 500, 500, 500, 2000,
                             true);
    EXPECT_EQ("throughput,100,1 connections,calls/s,500.0,500.0,500.0,2000.0,4.00\n",
              testing::internal::GetCapturedStdout());
}

TEST(PlixBenchStatsTest, RowWithoutFloorHasRatioZero)
{
    testing::internal::CaptureStdout();
    PlixBenchStats::printRow("startup", 10, "cost", "us", 1, 1, 1, 0);
    EXPECT_EQ("startup,10,cost,us,1.0,1.0,1.0,0.0,0.00\n", testing::internal::GetCapturedStdout());
}
