#include "FixedSalt.h"
#include "Jzon.h"
#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixValue.h"
#include "PlixValueOnChangeHandler.h"
#include "PlixValueValidator.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class CountingValidator : public PlixValueValidator
{
public:
    CountingValidator(PlixValue& value, unsigned result) : PlixValueValidator(value), result(result)
    {
    }
    unsigned validate() override
    {
        ++calls;
        seen = value.getWantedSetValue();
        return result;
    }
    unsigned result;
    int calls = 0;
    PlixVariant seen;
};

class NoAction : public PlixValueOnChangeHandler
{
public:
    using PlixValueOnChangeHandler::PlixValueOnChangeHandler;
    unsigned onChange() override { return 0; }
};

// A JSON node of one kind that records what was written into it.
class FakeNode : public Jzon::Node
{
public:
    enum Kind { STRING, NUMBER, BOOL };
    explicit FakeNode(Kind kind) : kind(kind) {}

    bool IsString() const override { return kind == STRING; }
    bool IsNumber() const override { return kind == NUMBER; }
    bool IsBool() const override { return kind == BOOL; }
    std::string ToString() const override { return written; }
    int ToInt() const override { return 0; }
    double ToDouble() const override { return 0.0; }
    bool ToBool() const override { return false; }

    void Set(const std::string& text) override { written = "string:" + text; }
    void Set(bool value) override { written = value ? "bool:true" : "bool:false"; }
    void Set(double value) override { written = "double:" + std::to_string(value); }
    void Set(int value) override { written = "int:" + std::to_string(value); }

    Kind kind;
    std::string written;
};

class PlixValueTest : public testing::Test
{
protected:
    PlixValueTest() { dataSet.setFile(&file); }

    // Gives the value a type and a default, hiding the trace line.
    void setDefault(PlixValue& target, const std::string& type, const std::string& text)
    {
        target.setValueType(type);
        CaptureStdout();
        target.setXML_Default_value(text);
        GetCapturedStdout();
    }

    std::string changeNodeOutput(PlixValue& target)
    {
        CaptureStdout();
        target.changeJsonNode();
        return GetCapturedStdout();
    }

    // Offers a double value of eth0 each double that JSON has no text for.
    void expectNonFiniteDoublesRefused()
    {
        dataSet.setName("eth0");
        value.setDefaultValue(PlixVariant(2.5));
        for (const double wanted :
             {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
              -std::numeric_limits<double>::infinity()}) {
            CaptureStdout();
            const unsigned result = value.setWantedSetValue(PlixVariant(wanted));
            EXPECT_EQ(GetCapturedStdout(),
                      "[NOT] Validation failed: value for eth0/ip not a finite number!\n");
            EXPECT_EQ(result, 200u);
        }
        EXPECT_FALSE(dataSet.toVerify());
        EXPECT_EQ(value.getValue().asDouble(), 2.5);
    }

    PlixFile file;
    PlixDataSet dataSet;
    PlixValue value{"ip", dataSet};
};

} // namespace

TEST_F(PlixValueTest, NewValueHasNameAndNothingElse)
{
    EXPECT_EQ(value.getName(), "ip");
    EXPECT_EQ(value.getJPath(), "");
    EXPECT_EQ(value.getValueType(), "");
    EXPECT_EQ(&value.getDataSet(), &dataSet);
    EXPECT_TRUE(value.getOnChangeHandlers().empty());
    EXPECT_EQ(value.getValueValidator(), nullptr);
    EXPECT_EQ(value.getValuePtr(), nullptr);
    EXPECT_EQ(value.getWantedSetValue().getDataType(), PlixVariant::NONE);
    EXPECT_EQ(value.getJsonNode(), nullptr);
    EXPECT_EQ(value.getLinkedPlixValueObject(), nullptr);
    EXPECT_TRUE(value.inJson());
    EXPECT_FALSE(value.valueInJsonWillBeReadFromPreviousPlixValue());
}

TEST_F(PlixValueTest, ValueWithoutContentReadsAsUntyped)
{
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::NONE);
}

TEST_F(PlixValueTest, PlainAccessorsKeepWhatWasSet)
{
    FakeNode node(FakeNode::STRING);
    CountingValidator validator(value, 0);
    value.setJPath("network.eth0.ip");
    value.setValueType("string");
    value.setJsonNode(&node);
    value.setValidator(&validator);
    EXPECT_EQ(value.getJPath(), "network.eth0.ip");
    EXPECT_EQ(value.getValueType(), "string");
    EXPECT_EQ(value.getJsonNode(), &node);
    EXPECT_EQ(value.getValueValidator(), &validator);
}

TEST_F(PlixValueTest, ValuesOfOneTypeKeepTheirTypeWhenAnotherChangesItsOwn)
{
    PlixValue mask{"mask", dataSet};
    value.setValueType("password,sha256,1000");
    mask.setValueType("password,sha256,1000");
    value.setValueType("string");
    EXPECT_EQ(mask.getValueType(), "password,sha256,1000");
    EXPECT_EQ(value.getValueType(), "string");
}

TEST_F(PlixValueTest, LaterValidatorReplacesEarlierOne)
{
    CountingValidator first(value, 0);
    CountingValidator second(value, 0);
    value.setValidator(&first);
    value.setValidator(&second);
    EXPECT_EQ(value.getValueValidator(), &second);
}

TEST_F(PlixValueTest, OnChangeHandlersKeepDeclarationOrder)
{
    NoAction first(value);
    NoAction second(value);
    value.setOnChangeHandler(&first);
    value.setOnChangeHandler(&second);
    const std::vector<PlixValueOnChangeHandler*> expected{&first, &second};
    EXPECT_EQ(value.getOnChangeHandlers(), expected);
}

TEST_F(PlixValueTest, IntDefaultOf42GivesTheInt42)
{
    setDefault(value, "int", "42");
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::INT);
    EXPECT_EQ(value.getValue().asInt(), 42);
    EXPECT_FALSE(value.inJson());
}

TEST_F(PlixValueTest, IntDefaultStopsAtTheFirstNonDigit)
{
    setDefault(value, "int", "4x");
    EXPECT_EQ(value.getValue().asInt(), 4);
}

TEST_F(PlixValueTest, EmptyIntDefaultGivesZero)
{
    setDefault(value, "int", "");
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::INT);
    EXPECT_EQ(value.getValue().asInt(), 0);
}

TEST_F(PlixValueTest, IntDefaultAllowsBlanksAndSign)
{
    setDefault(value, "int", "  -17");
    EXPECT_EQ(value.getValue().asInt(), -17);
}

TEST_F(PlixValueTest, BoolDefaultOfUppercaseTrueGivesFalse)
{
    setDefault(value, "bool", "TRUE");
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::BOOL);
    EXPECT_FALSE(value.getValue().asBool());
}

TEST_F(PlixValueTest, BoolDefaultOfTrueGivesTrue)
{
    setDefault(value, "bool", "true");
    EXPECT_TRUE(value.getValue().asBool());
}

TEST_F(PlixValueTest, StringDefaultKeepsTheText)
{
    setDefault(value, "string", " eth0 ");
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::STRING);
    EXPECT_EQ(value.getValue().asString(), " eth0 ");
}

TEST_F(PlixValueTest, DoubleAndFloatDefaultsGiveDoubles)
{
    PlixValue asFloat("gain", dataSet);
    setDefault(value, "double", "2.5");
    setDefault(asFloat, "float", "1e3x");
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::DOUBLE);
    EXPECT_DOUBLE_EQ(value.getValue().asDouble(), 2.5);
    EXPECT_EQ(asFloat.getValue().getDataType(), PlixVariant::DOUBLE);
    EXPECT_DOUBLE_EQ(asFloat.getValue().asDouble(), 1000.0);
}

TEST_F(PlixValueTest, PasswordDefaultIsHashedWithTheTypeText)
{
    FixedSalt salt;
    setDefault(value, "admin_password,sha256,0", "secret");
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::PASSWORD);
    EXPECT_EQ(value.getValue().getAsString(),
              std::string("c03c3acc7fa6f8e7acd57c145328ded75fb8ba48c402267114b571ab90425c") +
                  FixedSalt::hex);
}

TEST_F(PlixValueTest, DefaultOfUnknownTypeLeavesNoContent)
{
    value.setValueType("uint8");
    CaptureStdout();
    value.setXML_Default_value("5");
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(value.getValuePtr(), nullptr);
    EXPECT_FALSE(value.inJson());
}

TEST_F(PlixValueTest, DefaultPrintsTheDefaultTraceLine)
{
    value.setValueType("double");
    CaptureStdout();
    value.setXML_Default_value("3.14159265");
    EXPECT_EQ(GetCapturedStdout(), "default mvalue 3.14159\n");
}

TEST_F(PlixValueTest, WantedIntOnStringValueReturns200AndCallsNoValidator)
{
    CountingValidator validator(value, 0);
    value.setValidator(&validator);
    value.setDefaultValue(PlixVariant("text"));
    CaptureStdout();
    EXPECT_EQ(value.setWantedSetValue(PlixVariant(5)), 200u);
    EXPECT_EQ(GetCapturedStdout(), "[NOT] Datatype doesnt match the one from ip\n");
    EXPECT_EQ(validator.calls, 0);
    EXPECT_EQ(value.getWantedSetValue().asInt(), 5);
    EXPECT_FALSE(dataSet.toVerify());
}

TEST_F(PlixValueTest, WantedValueOnValueWithoutContentIsAMismatch)
{
    CaptureStdout();
    EXPECT_EQ(value.setWantedSetValue(PlixVariant(5)), 200u);
    EXPECT_EQ(GetCapturedStdout(), "[NOT] Datatype doesnt match the one from ip\n");
}

TEST_F(PlixValueTest, FailingValidatorCodeIsReturnedAndSetIsNotMarked)
{
    CountingValidator validator(value, 205);
    value.setValidator(&validator);
    value.setDefaultValue(PlixVariant(1));
    EXPECT_EQ(value.setWantedSetValue(PlixVariant(9)), 205u);
    EXPECT_EQ(validator.calls, 1);
    EXPECT_EQ(validator.seen.asInt(), 9);
    EXPECT_FALSE(dataSet.toVerify());
}

TEST_F(PlixValueTest, AcceptedWantedValueMarksTheDataSet)
{
    CountingValidator validator(value, 0);
    value.setValidator(&validator);
    value.setDefaultValue(PlixVariant(1));
    EXPECT_EQ(value.setWantedSetValue(PlixVariant(9)), 0u);
    EXPECT_EQ(validator.calls, 1);
    EXPECT_TRUE(dataSet.toVerify());
    EXPECT_EQ(value.getValue().asInt(), 1);
}

TEST_F(PlixValueTest, WantedValueWithoutValidatorMarksTheDataSet)
{
    value.setDefaultValue(PlixVariant("a"));
    EXPECT_EQ(value.setWantedSetValue(PlixVariant("b")), 0u);
    EXPECT_TRUE(dataSet.toVerify());
    EXPECT_EQ(value.getWantedSetValue().asString(), "b");
}

TEST_F(PlixValueTest, NonFiniteDoubleIsRefusedWith200BeforeTheValidator)
{
    CountingValidator validator(value, 0);
    value.setValidator(&validator);
    expectNonFiniteDoublesRefused();
    EXPECT_EQ(validator.calls, 0);
}

TEST_F(PlixValueTest, NonFiniteDoubleWithoutValidatorIsRefusedWith200)
{
    expectNonFiniteDoublesRefused();
}

TEST_F(PlixValueTest, ExtremeFiniteDoublesAreAccepted)
{
    value.setDefaultValue(PlixVariant(2.5));
    for (const double wanted :
         {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
          std::numeric_limits<double>::denorm_min(), -0.0}) {
        EXPECT_EQ(value.setWantedSetValue(PlixVariant(wanted)), 0u);
    }
    EXPECT_TRUE(dataSet.toVerify());
}

TEST_F(PlixValueTest, SetValueKeepsThePreviousContentForRollBack)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    EXPECT_EQ(value.getValue().asInt(), 2);
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 1);
}

TEST_F(PlixValueTest, SetValueAloneLeavesTheWantedSlotWithoutType)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    EXPECT_EQ(value.getWantedSetValue().getDataType(), PlixVariant::NONE);
}

TEST_F(PlixValueTest, SetBackToOldValueTwiceRestoresOnce)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    value.setBackToOldValue();
    value.setValue(PlixVariant(3));
    value.setBackToOldValue();
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 1);
}

TEST_F(PlixValueTest, SecondSetBackToOldValueChangesNothing)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    value.setBackToOldValue();
    value.getValuePtr()->setValueInt(7);
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 7);
}

TEST_F(PlixValueTest, SetBackToOldValueWithoutSetValueChangesNothing)
{
    value.setDefaultValue(PlixVariant(1));
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 1);
}

TEST_F(PlixValueTest, WantedValueForgetsTheOldContent)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    value.setWantedSetValue(PlixVariant(3));
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 2);
}

TEST_F(PlixValueTest, DefaultValueForgetsTheOldContent)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    value.setDefaultValue(PlixVariant(5));
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 5);
}

TEST_F(PlixValueTest, SetValueCopiesTagAndEveryContent)
{
    value.setDefaultValue(PlixVariant(1));
    PlixVariant offered("s");
    offered.setValueInt(8);
    value.setValue(offered);
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::STRING);
    EXPECT_EQ(value.getValue().asInt(), 8);
}

TEST_F(PlixValueTest, SetValueOnValueWithoutContentGivesItOne)
{
    value.setValue(PlixVariant(4));
    EXPECT_EQ(value.getValue().asInt(), 4);
    value.setBackToOldValue();
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::NONE);
}

TEST_F(PlixValueTest, LinkedValueSeesSetValueAndRollBack)
{
    PlixValue later("ip2", dataSet);
    value.setDefaultValue(PlixVariant(1));
    later.setValueInJsonWillBeReadFromPreviousPlixValue(&value);
    later.setValuePtr(value.getValuePtr());
    later.setValue(PlixVariant(2));
    EXPECT_EQ(value.getValue().asInt(), 2);
    later.setBackToOldValue();
    EXPECT_EQ(value.getValue().asInt(), 1);
    value.setValue(PlixVariant(3));
    EXPECT_EQ(later.getValue().asInt(), 3);
}

TEST_F(PlixValueTest, LinkRecordsTheEarlierValue)
{
    PlixValue later("ip2", dataSet);
    later.setValueInJsonWillBeReadFromPreviousPlixValue(&value);
    EXPECT_EQ(later.getLinkedPlixValueObject(), &value);
    EXPECT_TRUE(later.valueInJsonWillBeReadFromPreviousPlixValue());
}

TEST_F(PlixValueTest, SetValuePtrSharesTheContentAndMarksTheLink)
{
    PlixValue earlier("ip2", dataSet);
    earlier.setDefaultValue(PlixVariant(6));
    value.setValuePtr(earlier.getValuePtr());
    EXPECT_EQ(value.getValuePtr(), earlier.getValuePtr());
    EXPECT_EQ(value.getValue().asInt(), 6);
    EXPECT_TRUE(value.valueInJsonWillBeReadFromPreviousPlixValue());
}

TEST_F(PlixValueTest, LinkedValueKeepsTheOldContentWhenTheEarlierTakesANewDefault)
{
    PlixValue later("ip2", dataSet);
    value.setDefaultValue(PlixVariant(1));
    later.setValuePtr(value.getValuePtr());
    value.setDefaultValue(PlixVariant(9));
    EXPECT_NE(later.getValuePtr(), value.getValuePtr());
    EXPECT_EQ(later.getValue().asInt(), 1);
    later.setValue(PlixVariant(2));
    EXPECT_EQ(later.getValue().asInt(), 2);
    EXPECT_EQ(value.getValue().asInt(), 9);
}

TEST_F(PlixValueTest, ContentOutlivesTheValueThatMadeIt)
{
    {
        PlixValue earlier("ip2", dataSet);
        earlier.setDefaultValue(PlixVariant("x"));
        value.setValuePtr(earlier.getValuePtr());
    }
    EXPECT_EQ(value.getValue(), PlixVariant("x"));
}

TEST_F(PlixValueTest, ContentKeepsItsPlaceWhileManyMoreAreMade)
{
    value.setDefaultValue(PlixVariant(5));
    PlixVariant* const content = value.getValuePtr();
    std::vector<PlixValue> others(1000, PlixValue("n", dataSet));
    for (PlixValue& other : others) {
        other.setDefaultValue(PlixVariant(7));
    }
    EXPECT_EQ(value.getValuePtr(), content);
    EXPECT_EQ(content->asInt(), 5);
}

TEST_F(PlixValueTest, ManyDistinctTypeTextsKeepEachValuesType)
{
    std::vector<PlixValue> typed(200, PlixValue("n", dataSet));
    for (std::size_t i = 0; i < typed.size(); ++i) {
        typed[i].setValueType("t" + std::to_string(i));
    }
    for (std::size_t i = 0; i < typed.size(); ++i) {
        EXPECT_EQ(typed[i].getValueType(), "t" + std::to_string(i));
    }
    EXPECT_EQ(PlixValue("m", dataSet).getValueType(), "");
}

TEST_F(PlixValueTest, DefaultValueSeparatesLinkedValues)
{
    PlixValue later("ip2", dataSet);
    value.setDefaultValue(PlixVariant(1));
    later.setValuePtr(value.getValuePtr());
    CaptureStdout();
    later.setDefaultValue(PlixVariant(9));
    EXPECT_EQ(GetCapturedStdout(), "default mvalue 9\n");
    EXPECT_EQ(value.getValue().asInt(), 1);
    EXPECT_EQ(later.getValue().asInt(), 9);
}

TEST_F(PlixValueTest, CopyHasEmptyValueTypeButSharesTheContent)
{
    value.setJPath("a.b");
    setDefault(value, "int", "3");
    value.setWantedSetValue(PlixVariant(4));
    const PlixValue copy(value);
    EXPECT_EQ(copy.getValueType(), "");
    EXPECT_EQ(copy.getValuePtr(), value.getValuePtr());
    EXPECT_EQ(copy.getName(), "ip");
    EXPECT_EQ(copy.getJPath(), "a.b");
    EXPECT_EQ(&copy.getDataSet(), &dataSet);
    EXPECT_EQ(copy.getWantedSetValue().getDataType(), PlixVariant::NONE);
    EXPECT_FALSE(copy.inJson());
}

TEST_F(PlixValueTest, CopyKeepsHandlersValidatorNodeAndLink)
{
    NoAction action(value);
    CountingValidator validator(value, 0);
    FakeNode node(FakeNode::BOOL);
    PlixValue earlier("first", dataSet);
    value.setOnChangeHandler(&action);
    value.setValidator(&validator);
    value.setJsonNode(&node);
    value.setValueInJsonWillBeReadFromPreviousPlixValue(&earlier);
    const PlixValue copy(value);
    EXPECT_EQ(copy.getOnChangeHandlers().size(), 1u);
    EXPECT_EQ(copy.getValueValidator(), &validator);
    EXPECT_EQ(copy.getJsonNode(), &node);
    EXPECT_EQ(copy.getLinkedPlixValueObject(), &earlier);
    EXPECT_TRUE(copy.valueInJsonWillBeReadFromPreviousPlixValue());
}

TEST_F(PlixValueTest, CopyKeepsTheOldValueValidFlagButNotTheOldContent)
{
    value.setDefaultValue(PlixVariant(1));
    value.setValue(PlixVariant(2));
    PlixValue copy(value);
    copy.setBackToOldValue();
    EXPECT_EQ(value.getValue().getDataType(), PlixVariant::NONE);
}

TEST_F(PlixValueTest, StringNodeGetsTheTextOfTheContent)
{
    FakeNode node(FakeNode::STRING);
    value.setJsonNode(&node);
    setDefault(value, "bool", "true");
    EXPECT_EQ(changeNodeOutput(value), "change node\n");
    EXPECT_EQ(node.written, "string:true");
    EXPECT_TRUE(file.rewrite());
}

TEST_F(PlixValueTest, StringNodeOfPasswordGetsTheStoredForm)
{
    FakeNode node(FakeNode::STRING);
    value.setJsonNode(&node);
    value.setDefaultValue(PlixVariant(PlixPassword("abc", "password,sha256,0", false)));
    changeNodeOutput(value);
    EXPECT_EQ(node.written, "string:abc");
}

TEST_F(PlixValueTest, NumberNodeGetsTheIntOfAnIntValue)
{
    FakeNode node(FakeNode::NUMBER);
    value.setJsonNode(&node);
    setDefault(value, "int", "-12");
    changeNodeOutput(value);
    EXPECT_EQ(node.written, "int:-12");
}

TEST_F(PlixValueTest, NumberNodeGetsTheDoubleOfDoubleAndFloatValues)
{
    FakeNode doubleNode(FakeNode::NUMBER);
    FakeNode floatNode(FakeNode::NUMBER);
    PlixValue asFloat("gain", dataSet);
    value.setJsonNode(&doubleNode);
    asFloat.setJsonNode(&floatNode);
    setDefault(value, "double", "2.5");
    setDefault(asFloat, "float", "0.25");
    changeNodeOutput(value);
    changeNodeOutput(asFloat);
    EXPECT_EQ(doubleNode.written, "double:2.500000");
    EXPECT_EQ(floatNode.written, "double:0.250000");
}

TEST_F(PlixValueTest, NumberNodeOfStringValueStaysButFileIsRewritten)
{
    FakeNode node(FakeNode::NUMBER);
    value.setJsonNode(&node);
    setDefault(value, "string", "5");
    EXPECT_EQ(changeNodeOutput(value), "change node\n");
    EXPECT_EQ(node.written, "");
    EXPECT_TRUE(file.rewrite());
}

TEST_F(PlixValueTest, BoolNodeGetsTheBoolOfABoolValue)
{
    FakeNode node(FakeNode::BOOL);
    value.setJsonNode(&node);
    setDefault(value, "bool", "false");
    changeNodeOutput(value);
    EXPECT_EQ(node.written, "bool:false");
}

TEST_F(PlixValueTest, BoolNodeOfIntValueStaysButFileIsRewritten)
{
    FakeNode node(FakeNode::BOOL);
    value.setJsonNode(&node);
    setDefault(value, "int", "1");
    changeNodeOutput(value);
    EXPECT_EQ(node.written, "");
    EXPECT_TRUE(file.rewrite());
}

TEST_F(PlixValueTest, ValueWithoutNodeOnlyTracesTheChange)
{
    setDefault(value, "int", "1");
    EXPECT_EQ(changeNodeOutput(value), "change node\n");
    EXPECT_FALSE(file.rewrite());
}

TEST_F(PlixValueTest, ValueOfDataSetWithoutFileStillWritesItsNode)
{
    PlixDataSet noFile;
    PlixValue orphan("x", noFile);
    FakeNode node(FakeNode::NUMBER);
    orphan.setJsonNode(&node);
    setDefault(orphan, "int", "3");
    changeNodeOutput(orphan);
    EXPECT_EQ(node.written, "int:3");
}
