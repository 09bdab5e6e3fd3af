#include "PlixClientTimeout.h"
#include "PlixEngineFixture.h"

#include <csignal>
#include <unistd.h>

namespace {

class PlixClientTimeoutTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        PlixClientTimeout::installSignalHandler(&signalHandler);
    }

    void TearDown() override
    {
        alarm(0);
        PlixEngineFixture::TearDown();
    }

    static void signalHandler(int) { PlixClientTimeout::signalExpiry(); }

    int expiries = 0;
    PlixClientTimeout timeout{[this] { ++expiries; }};
};

} // namespace

// Each look at the clock keeps 1.5 s away from the deadline it probes, so
// that a loaded machine cannot move an event to its other side.
TEST_F(PlixClientTimeoutTest, ExpiresOnceAfterFourSeconds)
{
    timeout.arm();
    runMainLoopFor(2500);
    EXPECT_EQ(expiries, 0);
    EXPECT_TRUE(runMainLoopUntil([this] { return expiries > 0; }, 10000));
    runMainLoopFor(1500);
    EXPECT_EQ(expiries, 1);
}

TEST_F(PlixClientTimeoutTest, CancelledTimeoutNeverExpires)
{
    timeout.arm();
    timeout.cancel();
    PlixClientTimeout::signalExpiry();
    runMainLoopFor(200);
    EXPECT_EQ(expiries, 0);
}

TEST_F(PlixClientTimeoutTest, EventArrivingLongBeforeDeadlineIsIgnored)
{
    timeout.arm();
    raise(SIGALRM);
    runMainLoopFor(200);
    EXPECT_EQ(expiries, 0);
}

TEST_F(PlixClientTimeoutTest, ArmedObjectGoneLeavesEventUnrouted)
{
    {
        PlixClientTimeout other([this] { expiries += 10; });
        other.arm();
    }
    PlixClientTimeout::signalExpiry();
    runMainLoopFor(200);
    EXPECT_EQ(expiries, 0);
    EXPECT_EQ(alarm(0), 0u);
}
