#include "PlixctlValueText.h"

#include <gtest/gtest.h>

namespace {

// The text form GVariant prints of a value made from text or JSON, or the
// problem.
std::string printed(GVariant* value, const std::string& problem)
{
    if (value == nullptr) {
        return "problem: " + problem;
    }
    g_variant_ref_sink(value);
    gchar* text = g_variant_print(value, TRUE);
    std::string result = text;
    g_free(text);
    g_variant_unref(value);
    return result;
}

std::string read(const std::string& type, const std::string& text)
{
    std::string problem;
    GVariant* value = PlixctlValueText::fromText(type, text, &problem);
    return printed(value, problem);
}

std::string readJson(const std::string& type, const char* json)
{
    std::string problem;
    GVariant* value =
        PlixctlValueText::fromJson(type, nlohmann::ordered_json::parse(json), &problem);
    return printed(value, problem);
}

std::string shown(GVariant* value)
{
    g_variant_ref_sink(value);
    std::string text = PlixctlValueText::toText(value);
    g_variant_unref(value);
    return text;
}

} // namespace

TEST(PlixctlValueTextTest, ValueIsReadAsTheDeclaredType)
{
    EXPECT_EQ(read("int", "-42"), "-42");
    EXPECT_EQ(read("double", "0.25"), "0.25");
    EXPECT_EQ(read("float", "3"), "3.0");
    EXPECT_EQ(read("bool", "true"), "true");
    EXPECT_EQ(read("bool", "0"), "false");
    EXPECT_EQ(read("string", "42"), "'42'");
    EXPECT_EQ(read("password,sha256,1000", "s3cret"), "'s3cret'");
}

TEST(PlixctlValueTextTest, UnknownTypeIsSentAsText)
{
    EXPECT_EQ(read("", "7"), "'7'");
    EXPECT_EQ(read("uint8", "7"), "'7'");
}

TEST(PlixctlValueTextTest, TextThatIsNotOfTheTypeIsRefused)
{
    EXPECT_EQ(read("int", "seven"), "problem: 'seven' is not a valid int");
    EXPECT_EQ(read("int", "7x"), "problem: '7x' is not a valid int");
    EXPECT_EQ(read("int", "4294967296"), "problem: '4294967296' is not a valid int");
    EXPECT_EQ(read("int", ""), "problem: '' is not a valid int");
    EXPECT_EQ(read("double", " 1"), "problem: ' 1' is not a valid double");
    EXPECT_EQ(read("double", "nan"), "problem: 'nan' is not a valid double");
    EXPECT_EQ(read("double", "1e999"), "problem: '1e999' is not a valid double");
    EXPECT_EQ(read("bool", "yes"), "problem: 'yes' is not a valid bool");
}

TEST(PlixctlValueTextTest, ValuesAreShownPlain)
{
    EXPECT_EQ(shown(g_variant_new_boolean(TRUE)), "true");
    EXPECT_EQ(shown(g_variant_new_int32(-3)), "-3");
    EXPECT_EQ(shown(g_variant_new_double(0.1)), "0.1");
    EXPECT_EQ(shown(g_variant_new_double(2.0)), "2");
    EXPECT_EQ(shown(g_variant_new_string("a b")), "a b");
}

TEST(PlixctlValueTextTest, JsonKeepsTheType)
{
    GVariant* number = g_variant_ref_sink(g_variant_new_int32(5));
    GVariant* flag = g_variant_ref_sink(g_variant_new_boolean(FALSE));
    GVariant* text = g_variant_ref_sink(g_variant_new_string("x"));
    EXPECT_EQ(PlixctlValueText::toJson(number).dump(), "5");
    EXPECT_EQ(PlixctlValueText::toJson(flag).dump(), "false");
    EXPECT_EQ(PlixctlValueText::toJson(text).dump(), "\"x\"");
    g_variant_unref(number);
    g_variant_unref(flag);
    g_variant_unref(text);
}

TEST(PlixctlValueTextTest, PasswordIsRecognisedByItsTypeText)
{
    EXPECT_TRUE(PlixctlValueText::isPassword("password,sha256,1000"));
    EXPECT_TRUE(PlixctlValueText::isPassword("password"));
    EXPECT_FALSE(PlixctlValueText::isPassword("string"));
}

TEST(PlixctlValueTextTest, AnExportedValueIsSentAsItsJsonKind)
{
    EXPECT_EQ(readJson("int", "42"), "42");
    EXPECT_EQ(readJson("double", "2"), "2.0");
    EXPECT_EQ(readJson("double", "2.5"), "2.5");
    EXPECT_EQ(readJson("string", "true"), "true");
    EXPECT_EQ(readJson("bool", "false"), "false");
    EXPECT_EQ(readJson("string", "\"alpha\""), "'alpha'");
    EXPECT_EQ(readJson("password,sha256,1000", "\"new\""), "'new'");
}

TEST(PlixctlValueTextTest, AnExportedValueOfNoValueKindIsRefused)
{
    EXPECT_EQ(readJson("int", "4294967296"), "problem: 4294967296 is not a valid int");
    EXPECT_EQ(readJson("string", "null"), "problem: null is not a value");
    EXPECT_EQ(readJson("string", "[1]"), "problem: [1] is not a value");
}
