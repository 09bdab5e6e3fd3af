#include "PlixDataSetOnChangeSysconfigNotifyInit.h"
#include "PlixTestDataSet.h"
#include "SysconfigDouble.h"

TEST(PlixDataSetOnChangeSysconfigNotifyInit, CallsTheLibraryOnceAndIgnoresItsAnswer)
{
    SysconfigDouble::reset();
    PlixTestDataSet dataSet;
    PlixDataSetOnChangeSysconfigNotifyInit action(dataSet.get());
    EXPECT_EQ(action.onChange(), 0u);
    EXPECT_EQ(SysconfigDouble::notifyInitCalls(), 1);
}

TEST(PlixDataSetOnChangeSysconfigNotifyInit, TakesPartInCommitsAndStartUpByDefault)
{
    PlixTestDataSet dataSet;
    PlixDataSetOnChangeSysconfigNotifyInit action(dataSet.get());
    EXPECT_FALSE(action.getTriggerOnlyAtPlixBoot());
    EXPECT_TRUE(action.getTriggerOnPlixStart());
}
