#include "PlixStringValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixStringValidatorTest : public testing::Test
{
protected:
    unsigned judge(const std::string& wanted)
    {
        mode.setWantedSetValue(PlixVariant(wanted));
        return validator.validate();
    }

    PlixTestDataSet dataSet;
    PlixValue& mode = dataSet.add("mode", PlixVariant("on"));
    PlixStringValidator validator{mode};
};

} // namespace

TEST_F(PlixStringValidatorTest, ListedTextsAreAccepted)
{
    validator.setPossibleValues("on,off");
    EXPECT_EQ(judge("on"), 0u);
    EXPECT_EQ(judge("off"), 0u);
}

TEST_F(PlixStringValidatorTest, OnOffListRejectsOtherCaseAndALeadingBlank)
{
    validator.setPossibleValues("on,off");
    EXPECT_EQ(judge("On"), 200u);
    EXPECT_EQ(judge(" off"), 200u);
}

TEST_F(PlixStringValidatorTest, EmptyListTextAcceptsExactlyTheEmptyString)
{
    validator.setPossibleValues("");
    EXPECT_EQ(judge(""), 0u);
    EXPECT_EQ(judge(" "), 200u);
}

TEST_F(PlixStringValidatorTest, WithoutAListEverythingIsRejected)
{
    EXPECT_EQ(judge(""), 200u);
    EXPECT_EQ(judge("on"), 200u);
}

TEST_F(PlixStringValidatorTest, EmptyPiecesBetweenCommasAreKept)
{
    validator.setPossibleValues("a,,b");
    EXPECT_EQ(judge("a"), 0u);
    EXPECT_EQ(judge(""), 0u);
    EXPECT_EQ(judge("b"), 0u);
}

TEST_F(PlixStringValidatorTest, BlanksAroundCommasBelongToTheirPieces)
{
    validator.setPossibleValues("a , b");
    EXPECT_EQ(judge("a "), 0u);
    EXPECT_EQ(judge(" b"), 0u);
    EXPECT_EQ(judge("a"), 200u);
    EXPECT_EQ(judge("b"), 200u);
}

TEST_F(PlixStringValidatorTest, RepeatedDeclarationsAppendToTheList)
{
    validator.setPossibleValues("on");
    validator.setPossibleValues("off");
    EXPECT_EQ(judge("on"), 0u);
    EXPECT_EQ(judge("off"), 0u);
}

TEST_F(PlixStringValidatorTest, TextWithAZeroByteDiffersFromTheTextWithout)
{
    validator.setPossibleValues("abc");
    EXPECT_EQ(judge(std::string("abc\0", 4)), 200u);
}

TEST_F(PlixStringValidatorTest, RejectionLogsTheNotPossibleLineAsNotice)
{
    validator.setPossibleValues("on,off");
    mode.setWantedSetValue(PlixVariant("auto"));
    CaptureStdout();
    validator.validate();
    EXPECT_EQ(GetCapturedStdout(), "[NOT] Validation failed: value for mode not possible!\n");
}

TEST_F(PlixStringValidatorTest, AcceptedTextLogsNothing)
{
    validator.setPossibleValues("on,off");
    mode.setWantedSetValue(PlixVariant("on"));
    CaptureStdout();
    validator.validate();
    EXPECT_EQ(GetCapturedStdout(), "");
}
