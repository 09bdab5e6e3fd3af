#include "FixedSalt.h"
#include "PlixVariant.h"

#include <gtest/gtest.h>

#include <locale>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::string printed(const PlixVariant& variant)
{
    CaptureStdout();
    variant.print();
    return GetCapturedStdout();
}

// A locale that groups thousands, to show numbers never pick it up.
class GroupingPunct : public std::numpunct<char>
{
protected:
    char do_thousands_sep() const override { return '.'; }
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

PlixVariant passwordVariant(const std::string& plain)
{
    return PlixVariant(PlixPassword(plain, "password,sha256,0", true));
}

} // namespace

TEST(PlixVariant, ConstructorsSetTheirDataTypeNumbers)
{
    EXPECT_EQ(PlixVariant(true).getDataType(), 0);
    EXPECT_EQ(PlixVariant(std::string("x")).getDataType(), 1);
    EXPECT_EQ(PlixVariant("x").getDataType(), 1);
    EXPECT_EQ(PlixVariant(7).getDataType(), 2);
    EXPECT_EQ(PlixVariant(7.5).getDataType(), 3);
    EXPECT_EQ(PlixVariant(PlixPassword()).getDataType(), 4);
    EXPECT_EQ(PlixVariant().getDataType(), 5);
}

TEST(PlixVariant, ConstructorsFillTheirOwnContent)
{
    EXPECT_TRUE(PlixVariant(true).asBool());
    EXPECT_EQ(PlixVariant(std::string("ip")).asString(), "ip");
    EXPECT_EQ(PlixVariant(-7).asInt(), -7);
    EXPECT_DOUBLE_EQ(PlixVariant(7.5).asDouble(), 7.5);
    EXPECT_EQ(PlixVariant(PlixPassword("abc", "password,sha1,0", false))
                  .asPlixPassword()
                  .getHashedPassword(),
              "abc");
}

TEST(PlixVariant, StringContentStartsEmptyForOtherKinds)
{
    EXPECT_EQ(PlixVariant(7).asString(), "");
    EXPECT_EQ(PlixVariant(true).asString(), "");
    EXPECT_EQ(PlixVariant().asString(), "");
}

TEST(PlixVariant, DefaultVariantGivenDoubleBecomesDoubleVariant)
{
    PlixVariant variant;
    variant.setValueDouble(2.5);
    EXPECT_EQ(variant.getDataType(), PlixVariant::DOUBLE);
    EXPECT_EQ(variant.getAsString(), "2.5");
}

TEST(PlixVariant, BoolVariantGivenStringKeepsBoolTag)
{
    PlixVariant variant(true);
    variant.setValueString("x");
    EXPECT_EQ(variant.getDataType(), PlixVariant::BOOL);
    EXPECT_EQ(variant.getAsString(), "true");
    EXPECT_EQ(variant.asString(), "x");
}

TEST(PlixVariant, StringVariantGivenIntKeepsStringTagAndHoldsTheInt)
{
    PlixVariant variant("text");
    variant.setValueInt(7);
    EXPECT_EQ(variant.getDataType(), PlixVariant::STRING);
    EXPECT_EQ(variant.asInt(), 7);
    EXPECT_EQ(variant.getAsString(), "text");
}

TEST(PlixVariant, EachSetterGivesAnUntypedVariantItsType)
{
    PlixVariant asString;
    asString.setValueString("s");
    PlixVariant asBool;
    asBool.setValueBool(false);
    PlixVariant asInt;
    asInt.setValueInt(3);
    PlixVariant asPassword;
    asPassword.setValuePassword(PlixPassword());
    EXPECT_EQ(asString.getDataType(), PlixVariant::STRING);
    EXPECT_EQ(asBool.getDataType(), PlixVariant::BOOL);
    EXPECT_EQ(asInt.getDataType(), PlixVariant::INT);
    EXPECT_EQ(asPassword.getDataType(), PlixVariant::PASSWORD);
}

TEST(PlixVariant, SetValuePasswordCopiesEveryPasswordField)
{
    FixedSalt salt;
    PlixVariant variant;
    variant.setValuePassword(PlixPassword("secret", "password,sha1,1000", true));
    const PlixPassword copy = variant.asPlixPassword();
    EXPECT_EQ(copy.getPlainTextLength(), 6);
    EXPECT_EQ(copy.getHashedPassword(),
              std::string("2016b2641bc21563f1bcc1afb385ce1690b9d5") + FixedSalt::hex);
    EXPECT_TRUE(copy == "secret");
}

TEST(PlixVariant, CopyKeepsTagAndEveryContent)
{
    PlixVariant original("s");
    original.setValueInt(4);
    original.setValueBool(true);
    original.setValueDouble(1.5);
    const PlixVariant copy(original);
    EXPECT_EQ(copy.getDataType(), PlixVariant::STRING);
    EXPECT_EQ(copy.asString(), "s");
    EXPECT_EQ(copy.asInt(), 4);
    EXPECT_TRUE(copy.asBool());
    EXPECT_DOUBLE_EQ(copy.asDouble(), 1.5);
}

TEST(PlixVariant, CopyOfAPasswordOwnsItsOwnPasswordContent)
{
    FixedSalt salt;
    PlixVariant original(PlixPassword("secret", "password,sha1,1000", true));
    const PlixVariant copy(original);
    original.setValuePassword(PlixPassword("other", "password,sha1,1000", true));
    EXPECT_EQ(copy.getDataType(), PlixVariant::PASSWORD);
    EXPECT_EQ(copy.asPlixPassword().getPlainTextLength(), 6);
    EXPECT_TRUE(copy == PlixVariant("secret"));
    EXPECT_FALSE(copy == PlixVariant("other"));
}

TEST(PlixVariant, AssignmentReplacesEveryContentPasswordIncluded)
{
    FixedSalt salt;
    PlixVariant target(PlixPassword("secret", "password,sha1,1000", true));
    target = PlixVariant(3);
    EXPECT_EQ(target.getDataType(), PlixVariant::INT);
    EXPECT_EQ(target.asInt(), 3);
    EXPECT_EQ(target.asPlixPassword().getHashedPassword(), "");
    const PlixVariant password(PlixPassword("secret", "password,sha1,1000", true));
    target = password;
    EXPECT_EQ(target.getDataType(), PlixVariant::PASSWORD);
    EXPECT_EQ(target.getAsString(), password.getAsString());
}

TEST(PlixVariant, SelfAssignmentKeepsTheContent)
{
    FixedSalt salt;
    PlixVariant variant(PlixPassword("secret", "password,sha1,1000", true));
    const PlixVariant& same = variant;
    variant = same;
    EXPECT_TRUE(variant == PlixVariant("secret"));
}

TEST(PlixVariant, VariantThatNeverHeldAPasswordReadsAsAnEmptyPassword)
{
    const PlixVariant variant(1);
    EXPECT_EQ(variant.asPlixPassword().getHashedPassword(), "");
    EXPECT_EQ(variant.asPlixPassword().getPlainTextLength(), 0);
}

TEST(PlixVariant, TextOfBoolIsAWord)
{
    EXPECT_EQ(PlixVariant(true).getAsString(), "true");
    EXPECT_EQ(PlixVariant(false).getAsString(), "false");
}

TEST(PlixVariant, TextOfIntIsDecimal)
{
    EXPECT_EQ(PlixVariant(-42).getAsString(), "-42");
    EXPECT_EQ(PlixVariant(1234567).getAsString(), "1234567");
}

TEST(PlixVariant, TextOfDoubleHasSixSignificantDigits)
{
    EXPECT_EQ(PlixVariant(0.5).getAsString(), "0.5");
    EXPECT_EQ(PlixVariant(3.14159265).getAsString(), "3.14159");
    EXPECT_EQ(PlixVariant(10000000.0).getAsString(), "1e+07");
    EXPECT_EQ(PlixVariant(2.0).getAsString(), "2");
}

TEST(PlixVariant, TextOfNumbersIgnoresTheGlobalLocale)
{
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new GroupingPunct));
    const std::string intText = PlixVariant(1234567).getAsString();
    const std::string doubleText = PlixVariant(1234.5).getAsString();
    std::locale::global(previous);
    EXPECT_EQ(intText, "1234567");
    EXPECT_EQ(doubleText, "1234.5");
}

TEST(PlixVariant, TextOfPasswordIsItsStoredForm)
{
    const std::string stored = std::string(10, 'a') + FixedSalt::hex;
    EXPECT_EQ(PlixVariant(PlixPassword(stored, "password,sha256,0", false)).getAsString(), stored);
}

TEST(PlixVariant, TextOfUntypedVariantIsEmpty)
{
    EXPECT_EQ(PlixVariant().getAsString(), "");
}

TEST(PlixVariant, PrintOfTrueBoolWritesOneButTextIsTrue)
{
    EXPECT_EQ(printed(PlixVariant(true)), "1");
    EXPECT_EQ(PlixVariant(true).getAsString(), "true");
}

TEST(PlixVariant, PrintOfFalseBoolWritesZero)
{
    EXPECT_EQ(printed(PlixVariant(false)), "0");
}

TEST(PlixVariant, PrintWritesContentWithoutPrefixOrLineEnd)
{
    EXPECT_EQ(printed(PlixVariant(-3)), "-3");
    EXPECT_EQ(printed(PlixVariant("eth0")), "eth0");
    EXPECT_EQ(printed(PlixVariant(3.14159265)), "3.14159");
    EXPECT_EQ(printed(PlixVariant(PlixPassword("stored", "password,sha256,0", false))), "stored");
}

TEST(PlixVariant, PrintOfUntypedVariantWritesNothing)
{
    EXPECT_EQ(printed(PlixVariant()), "");
}

TEST(PlixVariant, DoublesCloserThanTheToleranceAreEqual)
{
    EXPECT_TRUE(PlixVariant(1.0) == PlixVariant(1.0005));
    EXPECT_FALSE(PlixVariant(1.0) == PlixVariant(1.002));
}

TEST(PlixVariant, DoublesOneThousandthApartAreEqualByRounding)
{
    EXPECT_TRUE(PlixVariant(1.0) == PlixVariant(1.001));
}

TEST(PlixVariant, DifferenceOfExactlyTheToleranceIsNotEqual)
{
    EXPECT_FALSE(PlixVariant(0.001) == PlixVariant(0.0));
    EXPECT_FALSE(PlixVariant(0.0) == PlixVariant(0.001));
}

TEST(PlixVariant, DoubleDoesNotEqualIntOfSameNumber)
{
    EXPECT_FALSE(PlixVariant(1.0) == PlixVariant(1));
}

TEST(PlixVariant, IntDoesNotEqualStringOfSameDigits)
{
    EXPECT_FALSE(PlixVariant(1) == PlixVariant("1"));
    EXPECT_FALSE(PlixVariant(true) == PlixVariant(1));
}

TEST(PlixVariant, StringWithTrailingZeroByteDiffers)
{
    EXPECT_FALSE(PlixVariant("abc") == PlixVariant(std::string("abc\0", 4)));
}

TEST(PlixVariant, EqualTagsCompareContentExactly)
{
    EXPECT_TRUE(PlixVariant(5) == PlixVariant(5));
    EXPECT_FALSE(PlixVariant(5) == PlixVariant(6));
    EXPECT_TRUE(PlixVariant(false) == PlixVariant(false));
    EXPECT_FALSE(PlixVariant(false) == PlixVariant(true));
    EXPECT_TRUE(PlixVariant("abc") == PlixVariant("abc"));
}

TEST(PlixVariant, TwoUntypedVariantsAreNotEqual)
{
    EXPECT_FALSE(PlixVariant() == PlixVariant());
    EXPECT_TRUE(PlixVariant() != PlixVariant());
}

TEST(PlixVariant, InequalityIsTheNegationOfEquality)
{
    EXPECT_FALSE(PlixVariant(1.0) != PlixVariant(1.0005));
    EXPECT_TRUE(PlixVariant(1.0) != PlixVariant(1.002));
    EXPECT_TRUE(PlixVariant(1) != PlixVariant("1"));
    EXPECT_FALSE(PlixVariant("a") != PlixVariant("a"));
}

TEST(PlixVariant, PasswordOnTheLeftAcceptsItsPlainText)
{
    const PlixVariant password = passwordVariant("secret");
    EXPECT_TRUE(password == PlixVariant("secret"));
    EXPECT_FALSE(password == PlixVariant("wrong"));
}

TEST(PlixVariant, PasswordOnTheRightAcceptsItsPlainText)
{
    const PlixVariant password = passwordVariant("secret");
    EXPECT_TRUE(PlixVariant("secret") == password);
    EXPECT_TRUE(PlixVariant("wrong") != password);
}

TEST(PlixVariant, PasswordIsComparedWithTheTextOfANonString)
{
    EXPECT_TRUE(passwordVariant("42") == PlixVariant(42));
    EXPECT_TRUE(PlixVariant(true) == passwordVariant("true"));
}

TEST(PlixVariant, PasswordAgainstPasswordChecksTheRightHashedText)
{
    const PlixVariant first = passwordVariant("secret");
    const PlixVariant second = passwordVariant("secret");
    const PlixVariant ofFirstStoredForm = passwordVariant(first.getAsString());
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(ofFirstStoredForm == first);
}
