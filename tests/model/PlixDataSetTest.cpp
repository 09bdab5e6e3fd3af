#include "PlixDataSet.h"
#include "PlixDatasetOnChangeHandler.h"
#include "PlixDatasetValidator.h"
#include "PlixFile.h"
#include "PlixValue.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class NoAction : public PlixDatasetOnChangeHandler
{
public:
    using PlixDatasetOnChangeHandler::PlixDatasetOnChangeHandler;
    unsigned onChange() override { return 0; }
};

class AlwaysValid : public PlixDatasetValidator
{
public:
    using PlixDatasetValidator::PlixDatasetValidator;
    unsigned validate() override { return 0; }
};

// The what() text of the out-of-range error a lookup throws, or "" if none.
template <typename Lookup>
std::string lookupError(Lookup lookup)
{
    try {
        lookup();
    } catch (const std::out_of_range& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(PlixDataSet, NewDataSetIsEmpty)
{
    const PlixDataSet dataSet;
    EXPECT_EQ(dataSet.getFile(), nullptr);
    EXPECT_EQ(dataSet.getName(), "");
    EXPECT_TRUE(dataSet.getValues().empty());
    EXPECT_TRUE(dataSet.getDatasetOnChangeHandlers().empty());
    EXPECT_TRUE(dataSet.getDataSetValidators().empty());
    EXPECT_FALSE(dataSet.toVerify());
}

TEST(PlixDataSet, NameAndFileAreKept)
{
    PlixDataSet dataSet;
    PlixFile file;
    dataSet.setName("eth0");
    dataSet.setFile(&file);
    EXPECT_EQ(dataSet.getName(), "eth0");
    EXPECT_EQ(dataSet.getFile(), &file);
}

TEST(PlixDataSet, TwoValuesOfOneNameAreListedAndTheFirstIsFound)
{
    PlixDataSet dataSet;
    PlixValue first("ip", dataSet);
    PlixValue second("ip", dataSet);
    dataSet.insertPlixValue(&first);
    dataSet.insertPlixValue(&second);
    const std::vector<PlixValue*> expected{&first, &second};
    EXPECT_EQ(dataSet.getValues(), expected);
    EXPECT_EQ(dataSet.getValue("ip"), &first);
}

TEST(PlixDataSet, ValuesKeepDeclarationOrder)
{
    PlixDataSet dataSet;
    PlixValue zeta("zeta", dataSet);
    PlixValue alpha("alpha", dataSet);
    dataSet.insertPlixValue(&zeta);
    dataSet.insertPlixValue(&alpha);
    const std::vector<PlixValue*> expected{&zeta, &alpha};
    EXPECT_EQ(dataSet.getValues(), expected);
    EXPECT_EQ(dataSet.getValue("alpha"), &alpha);
}

TEST(PlixDataSet, ValueOfANameInsertedAfterALookupIsFoundAndTheFirstStillWins)
{
    PlixDataSet dataSet;
    PlixValue ip("ip", dataSet);
    PlixValue mask("mask", dataSet);
    PlixValue laterIp("ip", dataSet);
    PlixValue gateway("gateway", dataSet);
    dataSet.insertPlixValue(&ip);
    dataSet.insertPlixValue(&mask);
    EXPECT_EQ(dataSet.getValue("ip"), &ip);
    dataSet.insertPlixValue(&laterIp);
    dataSet.insertPlixValue(&gateway);
    EXPECT_EQ(dataSet.getValue("ip"), &ip);
    EXPECT_EQ(dataSet.getValue("gateway"), &gateway);
    EXPECT_EQ(dataSet.getValue("mask"), &mask);
    EXPECT_EQ(dataSet.getValues().size(), 4U);
}

TEST(PlixDataSet, ASetFittedToItsMembersKeepsTheirOrderAndFindsTheFirstOfEachName)
{
    PlixDataSet dataSet;
    std::vector<std::unique_ptr<PlixValue>> members;
    const auto declare = [&](const char* name) {
        members.push_back(std::make_unique<PlixValue>(name, dataSet));
        dataSet.insertPlixValue(members.back().get());
    };
    declare("b");
    declare("a");
    EXPECT_EQ(dataSet.getValue("b"), members[0].get());
    declare("b");
    declare("c");
    declare("a");
    dataSet.shrinkToFit();
    EXPECT_EQ(dataSet.getValue("a"), members[1].get());
    EXPECT_EQ(dataSet.getValue("b"), members[0].get());
    EXPECT_EQ(dataSet.getValue("c"), members[3].get());
    std::vector<PlixValue*> declared;
    for (const auto& member : members) {
        declared.push_back(member.get());
    }
    EXPECT_EQ(dataSet.getValues(), declared);
    EXPECT_EQ(lookupError([&] { dataSet.getValue("d"); }), "map::at");
}

TEST(PlixDataSet, EveryMemberOfALargeSetIsFoundByItsExactName)
{
    PlixDataSet dataSet;
    std::vector<std::unique_ptr<PlixValue>> members;
    for (int i = 999; i >= 0; --i) {
        members.push_back(std::make_unique<PlixValue>("v" + std::to_string(i), dataSet));
        dataSet.insertPlixValue(members.back().get());
    }
    for (const auto& member : members) {
        EXPECT_EQ(dataSet.getValue(member->getName()), member.get());
    }
    EXPECT_EQ(lookupError([&] { dataSet.getValue("v"); }), "map::at");
    EXPECT_EQ(lookupError([&] { dataSet.getValue("v1000"); }), "map::at");
    EXPECT_EQ(lookupError([&] { dataSet.getValue("V1"); }), "map::at");
}

TEST(PlixDataSet, FirstOfEachRepeatedNameIsFoundAmongManyBeforeAndAfterALookup)
{
    PlixDataSet dataSet;
    std::vector<std::unique_ptr<PlixValue>> members;
    const auto insertRound = [&] {
        for (int i = 0; i < 60; ++i) {
            members.push_back(std::make_unique<PlixValue>("v" + std::to_string(i % 5), dataSet));
            dataSet.insertPlixValue(members.back().get());
        }
    };
    insertRound();
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(dataSet.getValue("v" + std::to_string(i)), members[i].get()) << i;
    }
    insertRound();
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(dataSet.getValue("v" + std::to_string(i)), members[i].get()) << i;
    }
    EXPECT_EQ(dataSet.getValues().size(), 120U);
}

TEST(PlixDataSet, GetValueOfAnotherDataSetsNameThrowsMapAt)
{
    PlixDataSet eth0;
    PlixDataSet station;
    PlixValue ip("ip", eth0);
    PlixValue name("name", station);
    eth0.insertPlixValue(&ip);
    station.insertPlixValue(&name);
    EXPECT_EQ(lookupError([&] { eth0.getValue("name"); }), "map::at");
}

TEST(PlixDataSet, GetAsVariantGivesACopyOfTheCurrentContent)
{
    PlixDataSet dataSet;
    PlixValue port("port", dataSet);
    port.setDefaultValue(PlixVariant(8080));
    dataSet.insertPlixValue(&port);
    PlixVariant copy = dataSet.getAsVariant("port");
    copy.setValueInt(1);
    EXPECT_EQ(dataSet.getAsVariant("port").asInt(), 8080);
}

TEST(PlixDataSet, GetAsVariantOfUnknownNameThrowsMapAt)
{
    PlixDataSet dataSet;
    EXPECT_EQ(lookupError([&] { dataSet.getAsVariant("port"); }), "map::at");
}

TEST(PlixDataSet, CopyKeepsItsValuesButFindsNoValueByName)
{
    PlixDataSet original;
    PlixValue ip("ip", original);
    original.insertPlixValue(&ip);
    const PlixDataSet copy(original);
    EXPECT_EQ(copy.getValues(), original.getValues());
    EXPECT_EQ(lookupError([&] { copy.getValue("ip"); }), "map::at");
    EXPECT_EQ(lookupError([&] { copy.getAsVariant("ip"); }), "map::at");
}

TEST(PlixDataSet, CopyFindsOnlyTheValuesInsertedIntoItAfterward)
{
    PlixDataSet original;
    PlixValue ip("ip", original);
    PlixValue copyIp("ip", original);
    original.insertPlixValue(&ip);
    EXPECT_EQ(original.getValue("ip"), &ip);
    PlixDataSet copy(original);
    copy.insertPlixValue(&copyIp);
    EXPECT_EQ(copy.getValue("ip"), &copyIp);
    EXPECT_EQ(original.getValue("ip"), &ip);
    EXPECT_EQ(copy.getValues().size(), 2U);
}

TEST(PlixDataSet, InsertsIntoTheOriginalAfterACopyAreNotSeenByTheCopy)
{
    PlixDataSet original;
    PlixValue ip("ip", original);
    PlixValue port("port", original);
    original.insertPlixValue(&ip);
    const PlixDataSet copy(original);
    original.insertPlixValue(&port);
    EXPECT_EQ(original.getValue("port"), &port);
    EXPECT_EQ(lookupError([&] { copy.getValue("port"); }), "map::at");
    EXPECT_EQ(copy.getValues().size(), 1U);
}

TEST(PlixDataSet, CopyOfACopyFindsOnlyWhatWasInsertedIntoIt)
{
    PlixDataSet original;
    PlixValue ip("ip", original);
    PlixValue mask("mask", original);
    PlixValue port("port", original);
    original.insertPlixValue(&ip);
    PlixDataSet copy(original);
    copy.insertPlixValue(&mask);
    PlixDataSet copyOfCopy(copy);
    copyOfCopy.insertPlixValue(&port);
    EXPECT_EQ(copyOfCopy.getValue("port"), &port);
    EXPECT_EQ(lookupError([&] { copyOfCopy.getValue("ip"); }), "map::at");
    EXPECT_EQ(lookupError([&] { copyOfCopy.getValue("mask"); }), "map::at");
    EXPECT_EQ(copyOfCopy.getValues(), (std::vector<PlixValue*>{&ip, &mask, &port}));
}

TEST(PlixDataSet, CopyKeepsNameFileHandlersAndValidatorsButNotTheMark)
{
    PlixDataSet original;
    PlixFile file;
    NoAction action(original);
    AlwaysValid validator(original);
    original.setName("eth0");
    original.setFile(&file);
    original.setDatasetOnChangeHandler(&action);
    original.setValidator(&validator);
    original.setVerify();
    const PlixDataSet copy(original);
    EXPECT_EQ(copy.getName(), "eth0");
    EXPECT_EQ(copy.getFile(), &file);
    EXPECT_EQ(copy.getDatasetOnChangeHandlers(), original.getDatasetOnChangeHandlers());
    EXPECT_EQ(copy.getDataSetValidators(), original.getDataSetValidators());
    EXPECT_FALSE(copy.toVerify());
}

TEST(PlixDataSet, HandlersAndValidatorsKeepDeclarationOrder)
{
    PlixDataSet dataSet;
    NoAction firstAction(dataSet);
    NoAction secondAction(dataSet);
    AlwaysValid firstValidator(dataSet);
    AlwaysValid secondValidator(dataSet);
    dataSet.setDatasetOnChangeHandler(&firstAction);
    dataSet.setDatasetOnChangeHandler(&secondAction);
    dataSet.setValidator(&firstValidator);
    dataSet.setValidator(&secondValidator);
    const std::vector<PlixDatasetOnChangeHandler*> actions{&firstAction, &secondAction};
    const std::vector<PlixDatasetValidator*> validators{&firstValidator, &secondValidator};
    EXPECT_EQ(dataSet.getDatasetOnChangeHandlers(), actions);
    EXPECT_EQ(dataSet.getDataSetValidators(), validators);
}

TEST(PlixDataSet, VerifyMarkIsSetAndCleared)
{
    PlixDataSet dataSet;
    dataSet.setVerify();
    EXPECT_TRUE(dataSet.toVerify());
    dataSet.resetVerify();
    EXPECT_FALSE(dataSet.toVerify());
}
