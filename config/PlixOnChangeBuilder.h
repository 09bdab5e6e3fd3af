#pragma once

#include "PlixXML_Position.h"

#include "PlixLoadReport.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

class PlixDataSetOnChangeExecute;
class PlixDatasetOnChangeHandler;
class PlixTriggerFlags;
class PlixValueOnChangeExecute;
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

    // Builds the actions of the onChange tag at line of the XML file.
    void build(const char** attributes, const PlixXML_Position& position, long line);

    // Warns of each Execute action whose command refuses its values, naming
    // what it belongs to and the command, and tells report the line of its
    // tag first. Called once the document is read, when every data set has
    // declared the members its command names.
    void warnAboutRefusedCommands(PlixLoadReport& report) const;

    // An Execute action, the XML-ID of its value or the name of its data
    // set, and the line of its tag.
    template <typename Action>
    struct Command
    {
        std::string owner;
        const Action* action;
        long line;
    };

private:
    void addAction(const std::string& keyword, const PlixXML_Position& position,
                   const char** setters, long line);
    void addValueAction(const std::string& keyword, PlixValue& value, const char** setters,
                        long line);
    void addDataSetAction(const std::string& keyword, PlixDataSet& dataSet, const char** setters,
                          long line);
    static PlixTriggerFlags* lastAction(const PlixXML_Position& position);

    std::vector<std::unique_ptr<PlixValueOnChangeHandler>> valueActions;
    std::vector<std::unique_ptr<PlixDatasetOnChangeHandler>> dataSetActions;
    // The Execute actions among them.
    std::vector<Command<PlixValueOnChangeExecute>> valueCommands;
    std::vector<Command<PlixDataSetOnChangeExecute>> dataSetCommands;
};
