#include "PlixEngineFixture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

struct PlixObservedChange
{
    std::vector<std::string> xmlIds;
    bool persistent;
};

class PlixChangeObserverTest : public PlixEngineFixture
{
protected:
    void SetUp() override
    {
        PlixEngineFixture::SetUp();
        configureTestEngine();
        engine->setChangeObserver([this](const std::vector<std::string>& xmlIds, bool persistent) {
            changes.push_back({xmlIds, persistent});
        });
    }

    void start(bool persistent) { ASSERT_EQ(engine->transactionStart("client-a", persistent), 0); }
    int stop() { return engine->transactionStop("client-a"); }

    std::vector<PlixObservedChange> changes;
};

} // namespace

TEST_F(PlixChangeObserverTest, PersistentCommitReportsChangedIdsInTransactionOrder)
{
    start(true);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 7), 0);
    ASSERT_EQ(engine->setStringValue("client-a", "a/s", "x"), 0);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 8), 1);
    ASSERT_EQ(stop(), 0);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_THAT(changes[0].xmlIds, ElementsAre("a/s", "a/i"));
    EXPECT_TRUE(changes[0].persistent);
}

TEST_F(PlixChangeObserverTest, NonPersistentCommitReportsPersistentFalse)
{
    start(false);
    ASSERT_EQ(engine->setDoubleValue("client-a", "a/d", 1.5), 0);
    ASSERT_EQ(stop(), 0);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_THAT(changes[0].xmlIds, ElementsAre("a/d"));
    EXPECT_FALSE(changes[0].persistent);
}

TEST_F(PlixChangeObserverTest, EmptyCommitReportsNothing)
{
    start(true);
    ASSERT_EQ(stop(), 0);
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(PlixChangeObserverTest, FailedCommitReportsNothing)
{
    writeFile("fail-value-i", "");
    start(true);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    EXPECT_NE(stop(), 0);
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(PlixChangeObserverTest, EngineIsIdleWhenTheObserverIsTold)
{
    bool idleWhenTold = false;
    engine->setChangeObserver([&](const std::vector<std::string>&, bool) {
        idleWhenTold = engine->transactionStart("client-b", true) == 0;
    });
    start(true);
    ASSERT_EQ(engine->setIntValue("client-a", "a/i", 9), 0);
    ASSERT_EQ(stop(), 0);
    EXPECT_TRUE(idleWhenTold);
}

TEST_F(PlixChangeObserverTest, TransientSetReportsItsIdNotPersistent)
{
    ASSERT_EQ(engine->setStringValueTransient("client-a", "a/s", "now"), 0);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_THAT(changes[0].xmlIds, ElementsAre("a/s"));
    EXPECT_FALSE(changes[0].persistent);
}

TEST_F(PlixChangeObserverTest, RefusedTransientSetReportsNothing)
{
    EXPECT_EQ(engine->setIntValueTransient("client-a", "a/i", 500), 200);
    EXPECT_EQ(engine->setStringValueTransient("client-a", "fixed/serial", "x"), 15);
    writeFile("fail-value-i", "");
    EXPECT_NE(engine->setIntValueTransient("client-a", "a/i", 9), 0);
    EXPECT_THAT(changes, IsEmpty());
}
