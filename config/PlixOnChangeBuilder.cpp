#include "PlixOnChangeBuilder.h"

#include "PlixDataSet.h"
#include "PlixDataSetOnChangeExecute.h"
#include "PlixDataSetOnChangeSysconfigNetwork.h"
#include "PlixDataSetOnChangeSysconfigNotifyInit.h"
#include "PlixLog.h"
#include "PlixValue.h"
#include "PlixValueOnChangeExecute.h"
#include "PlixValueOnChangeSysconfigStationName.h"
#include "PlixValueOnChangeWriteToFile.h"
#include "PlixXML_Attributes.h"

namespace {
// Gives each attribute called name, from setters on, to the action's setter.
template <typename Action>
std::unique_ptr<Action> withSetter(std::unique_ptr<Action> action, const char** setters,
                                   const char* name, void (Action::*set)(std::string))
{
    plixForEachAttributeNamed(setters, name, [&](const char* text) { ((*action).*set)(text); });
    return action;
}

template <typename Action>
void warnAboutRefusals(const std::vector<PlixOnChangeBuilder::Command<Action>>& commands,
                       PlixLoadReport& report)
{
    for (const auto& command : commands) {
        const std::string refusal = command.action->refusal();
        if (!refusal.empty()) {
            report.aboutLine(command.line);
            plixLog(LOG_WARNING,
                    "XML:\tExecute action of %s refuses its values: placeholder %s in command: %s",
                    command.owner.c_str(), refusal.c_str(), command.action->getCommand().c_str());
        }
    }
}
} // namespace

PlixOnChangeBuilder::PlixOnChangeBuilder() = default;

PlixOnChangeBuilder::~PlixOnChangeBuilder() = default;

void PlixOnChangeBuilder::build(const char** attributes, const PlixXML_Position& position,
                                long line)
{
    plixForEachAttribute(attributes, [&](const char* name, const char* text, const char** pair) {
        std::string attribute = name;
        if (attribute == "type") {
            addAction(text, position, pair, line);
            return;
        }
        PlixTriggerFlags* last = lastAction(position);
        if (last == nullptr) {
            return;
        }
        if (attribute == "triggerOnlyAtPlixBoot" && std::strcmp(text, "true") == 0) {
            last->setTriggerOnlyAtPlixBoot();
        } else if (attribute == "triggerOnPlixStart" && std::strcmp(text, "false") == 0) {
            last->setTriggerOnPlixStartFalse();
        }
    });
}

void PlixOnChangeBuilder::addAction(const std::string& keyword, const PlixXML_Position& position,
                                    const char** setters, long line)
{
    if (position.dataSetLevel) {
        addDataSetAction(keyword, *position.dataSet, setters, line);
    } else if (position.value != nullptr) {
        addValueAction(keyword, *position.value, setters, line);
    }
}

void PlixOnChangeBuilder::addValueAction(const std::string& keyword, PlixValue& value,
                                         const char** setters, long line)
{
    std::unique_ptr<PlixValueOnChangeHandler> action;
    if (keyword == "Execute") {
        auto execute = withSetter(std::make_unique<PlixValueOnChangeExecute>(value), setters,
                                  "command", &PlixValueOnChangeExecute::setCommand);
        valueCommands.push_back(
            {value.getDataSet().getName() + "/" + value.getName(), execute.get(), line});
        action = std::move(execute);
    } else if (keyword == "WriteToFile") {
        action = withSetter(std::make_unique<PlixValueOnChangeWriteToFile>(value), setters,
                            "filename", &PlixValueOnChangeWriteToFile::setPathToFile);
    } else if (keyword == "SysconfigStationName") {
        action = std::make_unique<PlixValueOnChangeSysconfigStationName>(value);
    } else {
        return;
    }
    valueActions.push_back(std::move(action));
    value.setOnChangeHandler(valueActions.back().get());
}

void PlixOnChangeBuilder::addDataSetAction(const std::string& keyword, PlixDataSet& dataSet,
                                           const char** setters, long line)
{
    std::unique_ptr<PlixDatasetOnChangeHandler> action;
    if (keyword == "Execute") {
        auto execute = withSetter(std::make_unique<PlixDataSetOnChangeExecute>(dataSet), setters,
                                  "command", &PlixDataSetOnChangeExecute::setCommand);
        dataSetCommands.push_back({dataSet.getName(), execute.get(), line});
        action = std::move(execute);
    } else if (keyword == "SysconfigNetwork") {
        action = std::make_unique<PlixDataSetOnChangeSysconfigNetwork>(dataSet);
    } else if (keyword == "SysconfigNotifyInit") {
        action = std::make_unique<PlixDataSetOnChangeSysconfigNotifyInit>(dataSet);
    } else {
        return;
    }
    dataSetActions.push_back(std::move(action));
    dataSet.setDatasetOnChangeHandler(dataSetActions.back().get());
}

void PlixOnChangeBuilder::warnAboutRefusedCommands(PlixLoadReport& report) const
{
    warnAboutRefusals(valueCommands, report);
    warnAboutRefusals(dataSetCommands, report);
}

PlixTriggerFlags* PlixOnChangeBuilder::lastAction(const PlixXML_Position& position)
{
    if (position.dataSetLevel) {
        auto actions = position.dataSet->getDatasetOnChangeHandlers();
        return actions.empty() ? nullptr : actions.back();
    }
    if (position.value == nullptr) {
        return nullptr;
    }
    auto actions = position.value->getOnChangeHandlers();
    return actions.empty() ? nullptr : actions.back();
}
