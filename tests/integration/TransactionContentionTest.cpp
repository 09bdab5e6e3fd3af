#include "PlixOutputLines.h"
#include "PlixServingTest.h"

#include <thread>

namespace {
const char* const kTimeoutLine = "[NOT] Client timeout!";
const char* const kClearLine = "[NOT] Clearing PLIX to be ready for new transactions";
} // namespace

using TransactionContention = PlixServingTest;

TEST_F(TransactionContention, SecondClientsStartIsRefusedWith8)
{
    PlixBusClient& other = newClient();
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(other.transactionStart(true), 8);
    syncOutput();
    EXPECT_TRUE(plixLinesAdjacent(
        lines(), {"[NOT] transactionStart client: " + other.uniqueName() + " persistent: true",
                  "[NOT] Plix is currently busy with another transaction!"}));
}

TEST_F(TransactionContention, SameClientStartingTwiceGets8AndKeepsItsTransaction)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().transactionStart(true), 8);
    EXPECT_EQ(client().setInt("general/count", 5), 0);
    EXPECT_EQ(client().transactionStop(), 0);
}

TEST_F(TransactionContention, NonHolderCallsAreRefusedAndTheHolderGoesOn)
{
    PlixBusClient& other = newClient();
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(other.getInt("general/count").status, 4);
    EXPECT_EQ(other.setInt("general/count", 1), 4);
    EXPECT_EQ(other.verify(g_variant_new_int32(42), "general/count"), 8);
    EXPECT_EQ(other.transactionStop(), 4);
    EXPECT_EQ(client().setInt("general/count", 5), 0);
    EXPECT_EQ(client().transactionStop(), 0);
    EXPECT_EQ(other.getIntTransient("general/count").value, 5);
    syncOutput();
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Plix is currently busy with another transaction "
                                     "with client " +
                                         client().uniqueName()));
}

TEST_F(TransactionContention, IdleClientLosesItsTransactionAfterFourSeconds)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_EQ(client().setInt("general/count", 5), 0);
    ASSERT_TRUE(service().waitForLine(kTimeoutLine, std::chrono::seconds(7)));
    EXPECT_TRUE(plixLinesAdjacent(lines(), {kTimeoutLine, kClearLine}));
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_EQ(client().getIntTransient("general/count").value, 42);
}

// Each call comes 1.5 s before the deadline that the call before it set; the
// last one 2 s past the deadline of the start, which it would miss without
// the grants.
TEST_F(TransactionContention, EachSuccessfulCallGrantsFourMoreSeconds)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_EQ(client().getInt("general/count").status, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_EQ(client().getInt("general/count").status, 0);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    EXPECT_EQ(client().setInt("general/count", 5), 0);
    EXPECT_EQ(client().transactionStop(), 0);
    EXPECT_FALSE(plixHasLine(lines(), kTimeoutLine));
}

TEST_F(TransactionContention, AnotherClientMayStartOnceTheHolderTimedOut)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_TRUE(service().waitForLine(kTimeoutLine, std::chrono::seconds(7)));
    EXPECT_EQ(newClient().transactionStart(true), 0);
}
