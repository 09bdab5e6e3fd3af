#include "PlixConnectionpriorityValidator.h"
#include "PlixDataSet.h"
#include "PlixDataSetNetworkValidator.h"
#include "PlixDataSetPortValidator.h"
#include "PlixGatewayValidator.h"
#include "PlixIPAddressValidator.h"
#include "PlixLoadedConfig.h"
#include "PlixMinMaxValidator.h"
#include "PlixPossibleIntValuesValidator.h"
#include "PlixStringLentghValidator.h"
#include "PlixStringValidator.h"
#include "PlixSubnetMaskValidator.h"
#include "PlixTolvarixPasswordValidator.h"

#include <gtest/gtest.h>

#include <string>

namespace {
// Validators are checked by what they do with a wanted value: the value
// holds a default of its type, so that only the validator decides.
class PlixValidationBuilderTest : public testing::Test
{
protected:
    PlixValue& loadValue(const std::string& type, const std::string& fallback,
                         const std::string& validations)
    {
        config.load("<DataSet ID=\"d\"><Value name=\"v\" type=\"" + type + "\" default=\"" +
                    fallback + "\">" + validations + "</Value></DataSet>");
        return config.value("d/v");
    }

    PlixValueValidator* validatorOf(const std::string& keyword)
    {
        return loadValue("string", "x", "<validation type=\"" + keyword + "\"/>")
            .getValueValidator();
    }

    std::vector<PlixDatasetValidator*> dataSetValidatorsOf(const std::string& validations)
    {
        config.load("<DataSet ID=\"d\">" + validations + "<Value name=\"v\"/></DataSet>");
        return config.dataSet("d").getDataSetValidators();
    }

    static unsigned offer(PlixValue& value, PlixVariant wanted)
    {
        testing::internal::CaptureStdout();
        unsigned status = value.setWantedSetValue(wanted);
        testing::internal::GetCapturedStdout();
        return status;
    }

    PlixLoadedConfig config;
};
} // namespace

TEST_F(PlixValidationBuilderTest, MinMaxValidatorKeywordCreatesAMinMaxValidator)
{
    EXPECT_NE(dynamic_cast<PlixMinMaxValidator*>(validatorOf("MinMaxValidator")), nullptr);
}

TEST_F(PlixValidationBuilderTest, StringLengthValidatorKeywordCreatesAStringLentghValidator)
{
    EXPECT_NE(dynamic_cast<PlixStringLentghValidator*>(validatorOf("StringLengthValidator")),
              nullptr);
}

TEST_F(PlixValidationBuilderTest, StringValidatorKeywordCreatesAStringValidator)
{
    EXPECT_NE(dynamic_cast<PlixStringValidator*>(validatorOf("StringValidator")), nullptr);
}

TEST_F(PlixValidationBuilderTest, IPAddressValidatorKeywordCreatesAnIPAddressValidator)
{
    EXPECT_NE(dynamic_cast<PlixIPAddressValidator*>(validatorOf("IPAddressValidator")), nullptr);
}

TEST_F(PlixValidationBuilderTest, SubnetMaskValidatorKeywordCreatesASubnetMaskValidator)
{
    EXPECT_NE(dynamic_cast<PlixSubnetMaskValidator*>(validatorOf("SubnetMaskValidator")), nullptr);
}

TEST_F(PlixValidationBuilderTest, GatewayValidatorKeywordCreatesAGatewayValidator)
{
    EXPECT_NE(dynamic_cast<PlixGatewayValidator*>(validatorOf("GatewayValidator")), nullptr);
}

TEST_F(PlixValidationBuilderTest, PossibleIntValuesValidatorKeywordCreatesItsClass)
{
    EXPECT_NE(
        dynamic_cast<PlixPossibleIntValuesValidator*>(validatorOf("PossibleIntValuesValidator")),
        nullptr);
}

TEST_F(PlixValidationBuilderTest, UnknownKeywordCreatesNothing)
{
    EXPECT_EQ(validatorOf("RangeValidator"), nullptr);
}

TEST_F(PlixValidationBuilderTest, MinAndMaxAfterTypeSetTheBounds)
{
    PlixValue& value =
        loadValue("int", "7", "<validation type=\"MinMaxValidator\" min=\"5\" max=\"10\"/>");
    EXPECT_EQ(offer(value, PlixVariant(4)), 200u);
    EXPECT_EQ(offer(value, PlixVariant(5)), 0u);
    EXPECT_EQ(offer(value, PlixVariant(10)), 0u);
    EXPECT_EQ(offer(value, PlixVariant(11)), 200u);
}

TEST_F(PlixValidationBuilderTest, MinWrittenBeforeTypeIsIgnored)
{
    PlixValue& value =
        loadValue("int", "7", "<validation min=\"5\" type=\"MinMaxValidator\" max=\"10\"/>");
    EXPECT_EQ(offer(value, PlixVariant(4)), 0u);
    EXPECT_EQ(offer(value, PlixVariant(11)), 200u);
}

TEST_F(PlixValidationBuilderTest, BoundsAreReadWithStrtolRules)
{
    PlixValue& value =
        loadValue("int", "0", "<validation type=\"MinMaxValidator\" min=\"abc\" max=\" 7x\"/>");
    EXPECT_EQ(offer(value, PlixVariant(-1)), 200u);
    EXPECT_EQ(offer(value, PlixVariant(7)), 0u);
    EXPECT_EQ(offer(value, PlixVariant(8)), 200u);
}

TEST_F(PlixValidationBuilderTest, StringLengthBoundsComeFromMinAndMax)
{
    PlixValue& value = loadValue(
        "string", "abc", "<validation type=\"StringLengthValidator\" min=\"2\" max=\"4\"/>");
    EXPECT_EQ(offer(value, PlixVariant("a")), 205u);
    EXPECT_EQ(offer(value, PlixVariant("abcd")), 0u);
    EXPECT_EQ(offer(value, PlixVariant("abcde")), 205u);
}

TEST_F(PlixValidationBuilderTest, StringValidatorTakesItsPossibleValuesFromPv)
{
    PlixValue& value =
        loadValue("string", "on", "<validation type=\"StringValidator\" pv=\"on,off\"/>");
    EXPECT_EQ(offer(value, PlixVariant("off")), 0u);
    EXPECT_EQ(offer(value, PlixVariant("auto")), 200u);
}

TEST_F(PlixValidationBuilderTest, PvWrittenBeforeTypeIsIgnored)
{
    PlixValue& value =
        loadValue("string", "on", "<validation pv=\"on,off\" type=\"StringValidator\"/>");
    EXPECT_EQ(offer(value, PlixVariant("off")), 200u);
}

TEST_F(PlixValidationBuilderTest, PossibleIntValuesTakesItsValuesFromPv)
{
    PlixValue& value =
        loadValue("int", "1", "<validation type=\"PossibleIntValuesValidator\" pv=\"1,2\"/>");
    EXPECT_EQ(offer(value, PlixVariant(2)), 0u);
    EXPECT_EQ(offer(value, PlixVariant(3)), 200u);
}

TEST_F(PlixValidationBuilderTest, ASecondValidationReplacesTheFirst)
{
    PlixValue& value = loadValue("int", "1",
                                 "<validation type=\"MinMaxValidator\" min=\"5\"/>"
                                 "<validation type=\"PossibleIntValuesValidator\" pv=\"1\"/>");
    EXPECT_NE(dynamic_cast<PlixPossibleIntValuesValidator*>(value.getValueValidator()), nullptr);
}

TEST_F(PlixValidationBuilderTest, ValueKeywordAtDataSetLevelIsIgnored)
{
    config.load("<DataSet ID=\"a\"><Value name=\"v\" type=\"int\" default=\"1\"/></DataSet>"
                "<DataSet ID=\"b\"><validation type=\"MinMaxValidator\" min=\"5\"/></DataSet>");
    EXPECT_EQ(config.value("a/v").getValueValidator(), nullptr);
    EXPECT_TRUE(config.dataSet("b").getDataSetValidators().empty());
}

TEST_F(PlixValidationBuilderTest, ValueLevelLastsAfterTheValuesEndTag)
{
    config.load("<DataSet ID=\"d\"><Value name=\"v\" type=\"int\" default=\"1\"/>"
                "<validation type=\"GatewayValidator\"/></DataSet>");
    EXPECT_NE(dynamic_cast<PlixGatewayValidator*>(config.value("d/v").getValueValidator()),
              nullptr);
}

TEST_F(PlixValidationBuilderTest, ValidationBeforeAnyDataSetCreatesNothing)
{
    config.load("<validation type=\"MinMaxValidator\"/><validation type=\"DataSetPortValidator\"/>"
                "<DataSet ID=\"d\"/>");
    EXPECT_TRUE(config.dataSet("d").getDataSetValidators().empty());
}

TEST_F(PlixValidationBuilderTest, DataSetKeywordsAreAppendedInDeclarationOrder)
{
    auto validators = dataSetValidatorsOf(
        "<validation type=\"DataSetNetworkValidator\"/><validation type=\"DataSetPortValidator\"/>"
        "<validation type=\"TolvarixPasswordValidator\"/>"
        "<validation type=\"ConnectionpriorityValidator\"/>");
    ASSERT_EQ(validators.size(), 4u);
    EXPECT_NE(dynamic_cast<PlixDataSetNetworkValidator*>(validators[0]), nullptr);
    EXPECT_NE(dynamic_cast<PlixDataSetPortValidator*>(validators[1]), nullptr);
    EXPECT_NE(dynamic_cast<PlixTolvarixPasswordValidator*>(validators[2]), nullptr);
    EXPECT_NE(dynamic_cast<PlixConnectionpriorityValidator*>(validators[3]), nullptr);
}

TEST_F(PlixValidationBuilderTest, DataSetKeywordAtValueLevelIsIgnored)
{
    config.load("<DataSet ID=\"d\"><Value name=\"v\"/>"
                "<validation type=\"DataSetPortValidator\"/></DataSet>");
    EXPECT_TRUE(config.dataSet("d").getDataSetValidators().empty());
    EXPECT_EQ(config.value("d/v").getValueValidator(), nullptr);
}

TEST_F(PlixValidationBuilderTest, ValidationWithoutTypeCreatesNothing)
{
    EXPECT_TRUE(dataSetValidatorsOf("<validation min=\"1\"/>").empty());
}
