#include "PlixJzonNode.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
using Json = nlohmann::ordered_json;
}

TEST(PlixJzonNode, KindTestsFollowTheElement)
{
    Json text = "a", number = 1.5, flag = true, nothing = nullptr;
    PlixJzonNode textNode(text), numberNode(number), flagNode(flag), nullNode(nothing);
    EXPECT_TRUE(textNode.IsString());
    EXPECT_FALSE(textNode.IsNumber());
    EXPECT_TRUE(numberNode.IsNumber());
    EXPECT_FALSE(numberNode.IsBool());
    EXPECT_TRUE(flagNode.IsBool());
    EXPECT_FALSE(nullNode.IsString() || nullNode.IsNumber() || nullNode.IsBool());
}

TEST(PlixJzonNode, ToStringGivesAStringsTextAndOtherwiseJsonText)
{
    Json text = "say \"hi\"", number = 17, flag = false;
    EXPECT_EQ(PlixJzonNode(text).ToString(), "say \"hi\"");
    EXPECT_EQ(PlixJzonNode(number).ToString(), "17");
    EXPECT_EQ(PlixJzonNode(flag).ToString(), "false");
}

TEST(PlixJzonNode, ToIntClampsToTheSigned32BitRange)
{
    Json big = 3000000000LL, small = -3000000000LL, huge = 1e300, real = -2.7, text = "5";
    EXPECT_EQ(PlixJzonNode(big).ToInt(), INT_MAX);
    EXPECT_EQ(PlixJzonNode(small).ToInt(), INT_MIN);
    EXPECT_EQ(PlixJzonNode(huge).ToInt(), INT_MAX);
    EXPECT_EQ(PlixJzonNode(real).ToInt(), -2);
    EXPECT_EQ(PlixJzonNode(text).ToInt(), 0);
}

TEST(PlixJzonNode, ToDoubleAndToBoolReadTheirKindsOnly)
{
    Json number = 7, flag = true, text = "true";
    EXPECT_EQ(PlixJzonNode(number).ToDouble(), 7.0);
    EXPECT_TRUE(PlixJzonNode(flag).ToBool());
    EXPECT_FALSE(PlixJzonNode(text).ToBool());
    EXPECT_EQ(PlixJzonNode(text).ToDouble(), 0.0);
}

TEST(PlixJzonNode, SetChangesTheElementInPlace)
{
    Json document = Json::parse(R"({"a": 1, "b": "x"})");
    PlixJzonNode node(document["a"]);
    node.AsValue().Set(std::string("one"));
    EXPECT_EQ(document.dump(), R"({"a":"one","b":"x"})");
    node.AsValue().Set(2.5);
    EXPECT_EQ(document.dump(), R"({"a":2.5,"b":"x"})");
    node.AsValue().Set(3);
    EXPECT_EQ(document.dump(), R"({"a":3,"b":"x"})");
    node.AsValue().Set(true);
    EXPECT_EQ(document.dump(), R"({"a":true,"b":"x"})");
}

TEST(PlixJzonNode, AsValueIsTheNodeItself)
{
    Json element = 1;
    PlixJzonNode node(element);
    EXPECT_EQ(static_cast<Jzon::Value*>(&node), &node.AsValue());
}
