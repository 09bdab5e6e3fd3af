#include "PlixPossibleIntValuesValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixPossibleIntValuesValidatorTest : public testing::Test
{
protected:
    unsigned judge(int wanted)
    {
        speed.setWantedSetValue(PlixVariant(wanted));
        return validator.validate();
    }

    PlixTestDataSet dataSet;
    PlixValue& speed = dataSet.add("speed", PlixVariant(1));
    PlixPossibleIntValuesValidator validator{speed};
};

} // namespace

TEST_F(PlixPossibleIntValuesValidatorTest, ListWithBlankAndLetterAcceptsOneTwoAndZero)
{
    validator.setPossibleValues("1, 2,x");
    EXPECT_EQ(judge(1), 0u);
    EXPECT_EQ(judge(2), 0u);
    EXPECT_EQ(judge(0), 0u);
    EXPECT_EQ(judge(3), 200u);
}

TEST_F(PlixPossibleIntValuesValidatorTest, PiecesAreReadUpToTheFirstNonDigit)
{
    validator.setPossibleValues("12ab,-4");
    EXPECT_EQ(judge(12), 0u);
    EXPECT_EQ(judge(-4), 0u);
}

TEST_F(PlixPossibleIntValuesValidatorTest, EmptyListTextAcceptsOnlyZero)
{
    validator.setPossibleValues("");
    EXPECT_EQ(judge(0), 0u);
    EXPECT_EQ(judge(1), 200u);
}

TEST_F(PlixPossibleIntValuesValidatorTest, WithoutAListEverythingIsRejected)
{
    EXPECT_EQ(judge(0), 200u);
}

TEST_F(PlixPossibleIntValuesValidatorTest, RepeatedDeclarationsAppendToTheList)
{
    validator.setPossibleValues("10");
    validator.setPossibleValues("100");
    EXPECT_EQ(judge(10), 0u);
    EXPECT_EQ(judge(100), 0u);
}

TEST_F(PlixPossibleIntValuesValidatorTest, RejectionLogsTheSameLineAsTheStringValidator)
{
    validator.setPossibleValues("10,100");
    speed.setWantedSetValue(PlixVariant(50));
    CaptureStdout();
    validator.validate();
    EXPECT_EQ(GetCapturedStdout(), "[NOT] Validation failed: value for speed not possible!\n");
}
