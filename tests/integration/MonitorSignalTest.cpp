#include "PlixMonitorCalls.h"
#include "PlixServingTest.h"
#include "PlixSignalRecorder.h"

#include <mutex>

namespace {
constexpr std::chrono::seconds kSignalBound{5};
using Ids = std::vector<std::string>;

// The kinds of the messages a connection receives, in the order they arrive
// (recorded in the connection's own thread).
class PlixArrivalOrder
{
public:
    explicit PlixArrivalOrder(GDBusConnection* connection)
        : mConnection(connection),
          mFilter(g_dbus_connection_add_filter(connection, record, this, nullptr))
    {
    }
    ~PlixArrivalOrder() { g_dbus_connection_remove_filter(mConnection, mFilter); }
    PlixArrivalOrder(const PlixArrivalOrder&) = delete;
    PlixArrivalOrder& operator=(const PlixArrivalOrder&) = delete;

    std::vector<GDBusMessageType> kinds()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        return mKinds;
    }

private:
    static GDBusMessage* record(GDBusConnection*, GDBusMessage* message, gboolean incoming,
                                gpointer self)
    {
        auto* order = static_cast<PlixArrivalOrder*>(self);
        if (incoming) {
            std::lock_guard<std::mutex> lock(order->mMutex);
            order->mKinds.push_back(g_dbus_message_get_message_type(message));
        }
        return message;
    }

    GDBusConnection* mConnection;
    guint mFilter;
    std::mutex mMutex;
    std::vector<GDBusMessageType> mKinds;
};
} // namespace

// ValuesChanged as a second connection, one that changes nothing, sees it.
class MonitorSignal : public PlixServingTest
{
protected:
    void SetUp() override
    {
        PlixServingTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        mRecorder = std::make_unique<PlixSignalRecorder>(newClient());
    }

    PlixSignalRecorder& recorder() { return *mRecorder; }

    // A transient set after the call under test: the first signal recorded
    // then tells whether that call sent one, since signals of one sender
    // arrive in order.
    void expectOnlyTheMarkerSignal()
    {
        ASSERT_EQ(client().setStringTransient("general/label", "mark"), 0);
        ASSERT_TRUE(recorder().waitFor(1, kSignalBound));
        EXPECT_EQ(recorder().changes().front().ids, Ids{"general/label"});
        EXPECT_EQ(recorder().changes().size(), 1u);
    }

private:
    std::unique_ptr<PlixSignalRecorder> mRecorder;
};

TEST_F(MonitorSignal, PersistentCommitSendsTheChangedIdsInTransactionOrder)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_EQ(client().setInt("general/count", 7), 0);
    ASSERT_EQ(client().setString("general/label", "beta"), 0);
    ASSERT_EQ(client().setInt("general/count", 8), 1);
    ASSERT_EQ(client().transactionStop(), 0);
    ASSERT_TRUE(recorder().waitFor(1, kSignalBound));
    EXPECT_EQ(recorder().changes()[0].ids, (Ids{"general/label", "general/count"}));
    EXPECT_TRUE(recorder().changes()[0].persistent);
}

TEST_F(MonitorSignal, CommitKeptInMemorySendsPersistentFalse)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    ASSERT_EQ(client().setInt("general/count", 7), 0);
    ASSERT_EQ(client().transactionStop(), 0);
    ASSERT_TRUE(recorder().waitFor(1, kSignalBound));
    EXPECT_EQ(recorder().changes()[0].ids, Ids{"general/count"});
    EXPECT_FALSE(recorder().changes()[0].persistent);
}

TEST_F(MonitorSignal, TransientSetSendsItsIdNotPersistent)
{
    ASSERT_EQ(client().setIntTransient("general/count", 7), 0);
    ASSERT_TRUE(recorder().waitFor(1, kSignalBound));
    EXPECT_EQ(recorder().changes()[0].ids, Ids{"general/count"});
    EXPECT_FALSE(recorder().changes()[0].persistent);
}

TEST_F(MonitorSignal, CallerGetsItsReplyBeforeTheSignalOfItsChange)
{
    PlixSignalRecorder ownSignals(client());
    PlixArrivalOrder order(client().connection());
    ASSERT_EQ(client().setIntTransient("general/count", 7), 0);
    ASSERT_TRUE(ownSignals.waitFor(1, kSignalBound));
    EXPECT_EQ(order.kinds(), (std::vector<GDBusMessageType>{G_DBUS_MESSAGE_TYPE_METHOD_RETURN,
                                                            G_DBUS_MESSAGE_TYPE_SIGNAL}));
}

TEST_F(MonitorSignal, ApplySendsOneSignalForItsCommit)
{
    ASSERT_EQ(PlixMonitorCalls(client())
                  .apply({{"general/count", g_variant_new_int32(7)},
                          {"ports/mainport", g_variant_new_int32(5800)}},
                         true)
                  .status,
              0);
    ASSERT_TRUE(recorder().waitFor(1, kSignalBound));
    EXPECT_EQ(recorder().changes()[0].ids, (Ids{"general/count", "ports/mainport"}));
    EXPECT_TRUE(recorder().changes()[0].persistent);
}

TEST_F(MonitorSignal, PasswordChangeSendsItsIdOnly)
{
    ASSERT_EQ(client().setStringTransient("general/secret", "s3cret"), 0);
    ASSERT_TRUE(recorder().waitFor(1, kSignalBound));
    EXPECT_EQ(recorder().changes()[0].ids, Ids{"general/secret"});
}

TEST_F(MonitorSignal, EmptyCommitSendsNothing)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_EQ(client().transactionStop(), 0);
    expectOnlyTheMarkerSignal();
}

TEST_F(MonitorSignal, FailedCommitSendsNothing)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_EQ(client().setInt("ports/httpport", 5900), 0);
    ASSERT_EQ(client().transactionStop(), 203);
    expectOnlyTheMarkerSignal();
}

TEST_F(MonitorSignal, RefusedTransientSetSendsNothing)
{
    ASSERT_EQ(client().setIntTransient("general/count", 5000), 200);
    ASSERT_EQ(client().setStringTransient("general/broken", "x"), 10);
    expectOnlyTheMarkerSignal();
}

TEST_F(MonitorSignal, RefusedApplySendsNothing)
{
    ASSERT_EQ(PlixMonitorCalls(client())
                  .apply({{"general/nothing", g_variant_new_int32(1)}}, true)
                  .status,
              9);
    expectOnlyTheMarkerSignal();
}
