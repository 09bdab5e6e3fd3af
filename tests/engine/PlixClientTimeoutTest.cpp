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

TEST_F(PlixClientTimeoutTest, ExpiresOnceAfterFourSeconds)
{
    timeout.arm();
    runMainLoopFor(3500);
    EXPECT_EQ(expiries, 0);
    runMainLoopFor(1200);
    EXPECT_EQ(expiries, 1);
    runMainLoopFor(300);
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
