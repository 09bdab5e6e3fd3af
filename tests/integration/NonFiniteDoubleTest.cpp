#include "PlixMonitorCalls.h"
#include "PlixOutputLines.h"
#include "PlixServingTest.h"

#include <signal.h>

#include <limits>

namespace {
const char* const kRatio = "general/ratio";
const char* const kRefusedLine =
    "[NOT] Validation failed: value for general/ratio not a finite number!";
// The doubles that JSON has no text for.
const double kNonFinite[] = {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity()};
} // namespace

// Whichever way a client sets a double, one that the store cannot hold is
// refused like any value that is not allowed, and the value survives a
// restart as it was.
class NonFiniteDouble : public PlixServingTest
{
protected:
    PlixMonitorCalls monitor() { return PlixMonitorCalls(client()); }

    // Ends the service and starts it again on the same store, which must be
    // as it was before the refused calls, and so must the value.
    void expectRatioIntactAfterRestart(const std::string& storeBefore)
    {
        syncOutput();
        EXPECT_EQ(plixCountLines(lines(), kRefusedLine), 3);
        ASSERT_EQ(kill(servicePid(), SIGTERM), 0);
        ASSERT_EQ(service().waitExit(kExitBound), 0);
        EXPECT_EQ(storeText(), storeBefore);
        PlixServiceProcess& again = start({"-c", dir().file("plix_test.xml")}, {}, "restarted");
        ASSERT_TRUE(waitServing(again)) << tail(again);
        const PlixGetReply<double> ratio = client().getDoubleTransient(kRatio);
        EXPECT_EQ(ratio.status, 0);
        EXPECT_EQ(ratio.value, 2.5);
    }
};

TEST_F(NonFiniteDouble, SetDoubleValueReplies200EndsTheTransactionAndWritesNothing)
{
    const std::string before = storeText();
    for (const double value : kNonFinite) {
        ASSERT_EQ(client().transactionStart(true), 0);
        EXPECT_EQ(client().setDouble(kRatio, value), 200);
        EXPECT_EQ(client().transactionStop(), 4);
    }
    expectRatioIntactAfterRestart(before);
}

TEST_F(NonFiniteDouble, SetDoubleValueTransientReplies200AndChangesNothing)
{
    const std::string before = storeText();
    for (const double value : kNonFinite) {
        EXPECT_EQ(client().setDoubleTransient(kRatio, value), 200);
        EXPECT_EQ(client().getDoubleTransient(kRatio).value, 2.5);
    }
    expectRatioIntactAfterRestart(before);
}

TEST_F(NonFiniteDouble, ApplyAnswers200NamesTheValueAndChangesNothing)
{
    const std::string before = storeText();
    for (const double value : kNonFinite) {
        const auto applied = monitor().apply(
            {{"general/count", g_variant_new_int32(7)}, {kRatio, g_variant_new_double(value)}},
            true);
        EXPECT_EQ(applied.status, 200);
        EXPECT_EQ(applied.failedId, kRatio);
        EXPECT_EQ(client().getIntTransient("general/count").value, 42);
    }
    // The Apply's transaction ended with the refused set.
    EXPECT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().transactionStop(), 0);
    expectRatioIntactAfterRestart(before);
}
