#include "PlixValueOnChangeSysconfigStationName.h"
#include "PlixTestDataSet.h"
#include "SysconfigDouble.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixValueOnChangeSysconfigStationNameTest : public testing::Test
{
protected:
    void SetUp() override { SysconfigDouble::reset(); }

    unsigned runWithAnswer(int answer)
    {
        SysconfigDouble::setAnswer(answer);
        CaptureStdout();
        const unsigned code = action.onChange();
        output = GetCapturedStdout();
        return code;
    }

    PlixTestDataSet dataSet;
    PlixValue& station = dataSet.add("station", PlixVariant("Press 7"));
    PlixValueOnChangeSysconfigStationName action{station};
    std::string output;
};

} // namespace

TEST_F(PlixValueOnChangeSysconfigStationNameTest, AppliedNameGivesZeroAndTheSuccessLine)
{
    EXPECT_EQ(runWithAnswer(1), 0u);
    EXPECT_EQ(output, "[NOT] Successfully used PlixValueOnChangeSysconfigStationName to set "
                      "Station Name: Press 7\n");
}

TEST_F(PlixValueOnChangeSysconfigStationNameTest, PassesTheNameWithTheServiceCallerIdentifier)
{
    runWithAnswer(1);
    ASSERT_EQ(SysconfigDouble::sysnameCalls().size(), 1u);
    EXPECT_EQ(SysconfigDouble::sysnameCalls()[0].caller, 0xFE02);
    EXPECT_EQ(SysconfigDouble::sysnameCalls()[0].name, "Press 7");
}

TEST_F(PlixValueOnChangeSysconfigStationNameTest, RefusedNameGives13AndTheFailureLine)
{
    EXPECT_EQ(runWithAnswer(0), 13u);
    EXPECT_EQ(output,
              "[NOT] PlixValueOnChangeSysconfigStationName failed with Station Name: Press 7\n");
}

TEST_F(PlixValueOnChangeSysconfigStationNameTest, AnyAnswerButOneIsAFailure)
{
    EXPECT_EQ(runWithAnswer(2), 13u);
    EXPECT_EQ(runWithAnswer(-1), 13u);
}

TEST_F(PlixValueOnChangeSysconfigStationNameTest, NameIsTheTextOfTheCurrentContent)
{
    station.setValue(PlixVariant(42));
    runWithAnswer(1);
    ASSERT_EQ(SysconfigDouble::sysnameCalls().size(), 1u);
    EXPECT_EQ(SysconfigDouble::sysnameCalls()[0].name, "42");
}
