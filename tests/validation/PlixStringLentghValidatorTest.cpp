#include "PlixStringLentghValidator.h"
#include "PlixTestDataSet.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class PlixStringLentghValidatorTest : public testing::Test
{
protected:
    unsigned judge(const PlixVariant& wanted)
    {
        name.setWantedSetValue(wanted);
        return validator.validate();
    }

    PlixTestDataSet dataSet;
    PlixValue& name = dataSet.add("name", PlixVariant(""));
    PlixStringLentghValidator validator{name};
};

} // namespace

TEST_F(PlixStringLentghValidatorTest, PasswordIsMeasuredByItsPlainTextNotItsHash)
{
    validator.setMinStringLentgh(8);
    validator.setMaxStringLentgh(16);
    const PlixVariant password = passwordFrom("8charsOK");
    ASSERT_GT(password.asPlixPassword().getHashedPassword().size(), 16u);
    EXPECT_EQ(judge(password), 0u);
}

TEST_F(PlixStringLentghValidatorTest, PasswordShorterThanTheMinimumGives205)
{
    validator.setMinStringLentgh(8);
    validator.setMaxStringLentgh(16);
    EXPECT_EQ(judge(passwordFrom("7charsX")), 205u);
}

TEST_F(PlixStringLentghValidatorTest, StringLengthBoundsAreInclusive)
{
    validator.setMinStringLentgh(2);
    validator.setMaxStringLentgh(4);
    EXPECT_EQ(judge(PlixVariant("ab")), 0u);
    EXPECT_EQ(judge(PlixVariant("abcd")), 0u);
    EXPECT_EQ(judge(PlixVariant("a")), 205u);
    EXPECT_EQ(judge(PlixVariant("abcde")), 205u);
}

TEST_F(PlixStringLentghValidatorTest, StringLengthCountsBytes)
{
    validator.setMinStringLentgh(3);
    validator.setMaxStringLentgh(3);
    EXPECT_EQ(judge(PlixVariant("\xC3\xA4"
                                "b")),
              0u);
}

TEST_F(PlixStringLentghValidatorTest, IntBoolAndDoubleGive204WhateverTheBounds)
{
    EXPECT_EQ(judge(PlixVariant(5)), 204u);
    EXPECT_EQ(judge(PlixVariant(true)), 204u);
    EXPECT_EQ(judge(PlixVariant(2.5)), 204u);
    validator.setMinStringLentgh(0);
    validator.setMaxStringLentgh(0);
    EXPECT_EQ(judge(PlixVariant(0)), 204u);
}

TEST_F(PlixStringLentghValidatorTest, LengthOutOfBoundsLogsNothing)
{
    validator.setMaxStringLentgh(1);
    name.setWantedSetValue(PlixVariant("too long"));
    CaptureStdout();
    EXPECT_EQ(validator.validate(), 205u);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(PlixStringLentghValidatorTest, TypeWithoutLengthLogsNothing)
{
    name.setWantedSetValue(PlixVariant(3));
    CaptureStdout();
    EXPECT_EQ(validator.validate(), 204u);
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(PlixStringLentghValidatorTest, WithoutBoundsAnyLengthIsAccepted)
{
    EXPECT_EQ(judge(PlixVariant("")), 0u);
    EXPECT_EQ(judge(PlixVariant(std::string(1000, 'x'))), 0u);
}
