#include "PlixEngineFixture.h"
#include "PlixStoreRetry.h"

#include <chrono>
#include <memory>

namespace {

constexpr std::chrono::milliseconds shortPeriod{20};

// The retry timer with a period short enough for a unit test; each attempt
// counts itself and succeeds from the given try on.
class PlixStoreRetryTest : public PlixEngineFixture
{
protected:
    std::unique_ptr<PlixStoreRetry> retryUntilTry(int successfulTry)
    {
        return std::make_unique<PlixStoreRetry>(
            shortPeriod, [this, successfulTry] { return ++attempts >= successfulTry; });
    }

    // Runs the main loop until the number of tries is reached, for at most
    // five seconds, so a loaded machine only makes the test slower.
    bool runUntilAttempts(int expected)
    {
        const gint64 end = g_get_monotonic_time() + 5 * G_USEC_PER_SEC;
        while (attempts < expected && g_get_monotonic_time() < end) {
            runMainLoopFor(10);
        }
        return attempts >= expected;
    }

    int attempts = 0;
};

} // namespace

TEST_F(PlixStoreRetryTest, NothingIsTriedBeforeTheTimerIsArmed)
{
    const auto retry = retryUntilTry(1);
    runMainLoopFor(200);
    EXPECT_EQ(attempts, 0);
    EXPECT_FALSE(retry->armed());
}

TEST_F(PlixStoreRetryTest, TriesEachPeriodUntilATryLeavesNothingUnwritten)
{
    const auto retry = retryUntilTry(3);
    retry->arm();
    EXPECT_TRUE(retry->armed());
    ASSERT_TRUE(runUntilAttempts(3));
    EXPECT_FALSE(retry->armed());
    runMainLoopFor(200);
    EXPECT_EQ(attempts, 3);
}

TEST_F(PlixStoreRetryTest, ArmingAnArmedTimerAddsNoSecondTimer)
{
    const auto retry = retryUntilTry(1);
    retry->arm();
    retry->arm();
    retry->arm();
    ASSERT_TRUE(runUntilAttempts(1));
    runMainLoopFor(200);
    EXPECT_EQ(attempts, 1);
}

TEST_F(PlixStoreRetryTest, TheFirstTryWaitsAPeriod)
{
    PlixStoreRetry retry(std::chrono::seconds(10), [this] { return ++attempts > 0; });
    retry.arm();
    runMainLoopFor(200);
    EXPECT_EQ(attempts, 0);
}

TEST_F(PlixStoreRetryTest, ATimerGoneWithItsRetryNeverTries)
{
    auto retry = retryUntilTry(1);
    retry->arm();
    retry.reset();
    runMainLoopFor(200);
    EXPECT_EQ(attempts, 0);
}

TEST_F(PlixStoreRetryTest, ATimerThatEndedCanBeArmedAgain)
{
    const auto retry = retryUntilTry(1);
    retry->arm();
    ASSERT_TRUE(runUntilAttempts(1));
    retry->arm();
    EXPECT_TRUE(runUntilAttempts(2));
}
