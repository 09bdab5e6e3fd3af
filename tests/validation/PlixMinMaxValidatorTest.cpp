#include "PlixMinMaxValidator.h"
#include "PlixTestDataSet.h"

#include <climits>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixMinMaxValidatorTest : public testing::Test
{
protected:
    unsigned judge(const PlixVariant& wanted)
    {
        port.setWantedSetValue(wanted);
        return validator.validate();
    }

    PlixTestDataSet dataSet;
    PlixValue& port = dataSet.add("port", PlixVariant(5));
    PlixMinMaxValidator validator{port};
};

} // namespace

TEST_F(PlixMinMaxValidatorTest, BothBoundsAreInclusive)
{
    validator.setMin(1);
    validator.setMax(10);
    EXPECT_EQ(judge(PlixVariant(1)), 0u);
    EXPECT_EQ(judge(PlixVariant(10)), 0u);
}

TEST_F(PlixMinMaxValidatorTest, ValuesJustOutsideTheBoundsGive200)
{
    validator.setMin(1);
    validator.setMax(10);
    EXPECT_EQ(judge(PlixVariant(0)), 200u);
    EXPECT_EQ(judge(PlixVariant(11)), 200u);
}

TEST_F(PlixMinMaxValidatorTest, RejectionLogsTheShortNameAndBoundsAsNotice)
{
    validator.setMin(1);
    validator.setMax(10);
    port.setWantedSetValue(PlixVariant(11));
    CaptureStdout();
    validator.validate();
    EXPECT_EQ(GetCapturedStdout(),
              "[NOT] Validation failed: value for port not beetween 1 and 10!\n");
}

TEST_F(PlixMinMaxValidatorTest, AcceptedValueLogsNothing)
{
    validator.setMin(1);
    validator.setMax(10);
    port.setWantedSetValue(PlixVariant(5));
    CaptureStdout();
    validator.validate();
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(PlixMinMaxValidatorTest, AValueOfAnotherTypeIsJudgedByItsIntegerConversion)
{
    validator.setMin(1);
    validator.setMax(10);
    PlixVariant textWithIntContent("abc");
    textWithIntContent.setValueInt(5);
    EXPECT_EQ(judge(textWithIntContent), 0u);
    // The text "7" is not parsed: its integer content is 0.
    EXPECT_EQ(judge(PlixVariant("7")), 200u);
}

TEST_F(PlixMinMaxValidatorTest, BoundsCompareAsSignedIntegers)
{
    validator.setMin(-5);
    validator.setMax(5);
    EXPECT_EQ(judge(PlixVariant(-5)), 0u);
    EXPECT_EQ(judge(PlixVariant(-6)), 200u);
}

TEST_F(PlixMinMaxValidatorTest, WithoutBoundsTheWholeSigned32BitRangeIsAccepted)
{
    EXPECT_EQ(judge(PlixVariant(INT_MIN)), 0u);
    EXPECT_EQ(judge(PlixVariant(INT_MAX)), 0u);
}

TEST_F(PlixMinMaxValidatorTest, OnlyAMinimumLeavesTheTopOpen)
{
    validator.setMin(100);
    EXPECT_EQ(judge(PlixVariant(INT_MAX)), 0u);
    EXPECT_EQ(judge(PlixVariant(99)), 200u);
}
