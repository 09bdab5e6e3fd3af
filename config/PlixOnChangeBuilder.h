#pragma once

#include "PlixXML_Position.h"

#include <memory>
#include <string>
#include <vector>

class PlixDatasetOnChangeHandler;
class PlixTriggerFlags;
class PlixValueOnChangeHandler;

// Creates the change actions that onChange tags declare and keeps them for
// as long as the model lives. Attributes act in document order: "type"
// creates an action of the current level (its setters read from "type"
// onward), and the trigger flags act on the last action of the current
// level, so written before "type" they change the previous action.
class PlixOnChangeBuilder
{
public:
    PlixOnChangeBuilder();
    ~PlixOnChangeBuilder();
    PlixOnChangeBuilder(const PlixOnChangeBuilder&) = delete;
    PlixOnChangeBuilder& operator=(const PlixOnChangeBuilder&) = delete;

    void build(const char** attributes, const PlixXML_Position& position);

private:
    void addAction(const std::string& keyword, const PlixXML_Position& position,
                   const char** setters);
    void addValueAction(const std::string& keyword, PlixValue& value, const char** setters);
    void addDataSetAction(const std::string& keyword, PlixDataSet& dataSet, const char** setters);
    static PlixTriggerFlags* lastAction(const PlixXML_Position& position);

    std::vector<std::unique_ptr<PlixValueOnChangeHandler>> valueActions;
    std::vector<std::unique_ptr<PlixDatasetOnChangeHandler>> dataSetActions;
};
