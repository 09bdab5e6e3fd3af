#include "PlixCommit.h"

#include "PlixChangeActions.h"
#include "PlixDataSet.h"
#include "PlixDatasetValidator.h"
#include "PlixFile.h"
#include "PlixJsonModifier.h"
#include "PlixLog.h"
#include "PlixValue.h"

PlixCommit::PlixCommit(std::vector<PlixValue*> changedValues,
                       const std::vector<PlixDataSet*>& dataSets)
    : changedValues(std::move(changedValues)), dataSets(dataSets)
{
}

unsigned PlixCommit::run(bool persistent, PlixJsonModifier& jsonModifier)
{
    apply();
    unsigned result = validateDataSets();
    if (result == 0) {
        result = runValueActions();
    }
    if (result == 0) {
        result = runDataSetActions();
    }
    if (result == 0 && persistent) {
        persist(jsonModifier);
    }
    return result;
}

void PlixCommit::apply()
{
    for (PlixValue* value : changedValues) {
        value->setValue(value->getWantedSetValue());
    }
}

unsigned PlixCommit::validateDataSets()
{
    for (PlixDataSet* dataSet : dataSets) {
        if (!dataSet->toVerify()) {
            continue;
        }
        for (PlixDatasetValidator* validator : dataSet->getDataSetValidators()) {
            const unsigned result = validator->validate();
            if (result != 0) {
                rollBackChangedValues();
                plixLog(LOG_WARNING, "Validating DataSet %s failed.", dataSet->getName().c_str());
                return result;
            }
        }
    }
    return 0;
}

unsigned PlixCommit::runValueActions()
{
    for (PlixValue* value : changedValues) {
        const unsigned result = PlixChangeActions::runOnChange(*value);
        if (result != 0) {
            plixLog(LOG_WARNING, "Triggering onChange with Value %s failed.",
                    value->getName().c_str());
            rollBackChangedValues();
            return result;
        }
    }
    return 0;
}

unsigned PlixCommit::runDataSetActions()
{
    for (PlixDataSet* dataSet : dataSets) {
        if (!dataSet->toVerify()) {
            continue;
        }
        const unsigned result = PlixChangeActions::runOnChange(*dataSet);
        if (result != 0) {
            rollBackMarkedDataSets();
            plixLog(LOG_WARNING, "Triggering onChange with DataSet %s failed.",
                    dataSet->getName().c_str());
            return result;
        }
    }
    return 0;
}

void PlixCommit::persist(PlixJsonModifier& jsonModifier)
{
    for (PlixValue* value : changedValues) {
        // A value with a default has no JSON node and never reaches the store.
        if (value->inJson()) {
            value->changeJsonNode();
        }
    }
    if (jsonModifier.rewrite_json() != 0) {
        findUnstoredFile();
    }
}

// The rewrite leaves exactly the files it could not write marked; one left
// from an earlier commit and still unwritten is not this commit's.
void PlixCommit::findUnstoredFile()
{
    for (PlixValue* value : changedValues) {
        const PlixFile* file = value->getDataSet().getFile();
        if (value->inJson() && file != nullptr && file->rewrite()) {
            unstored = file->getPath();
            return;
        }
    }
}

void PlixCommit::rollBackChangedValues()
{
    for (PlixValue* value : changedValues) {
        value->setBackToOldValue();
    }
}

// A data-set action may have acted on every member of its set, so every
// member of every marked set goes back, not only the values set just now.
void PlixCommit::rollBackMarkedDataSets()
{
    for (PlixDataSet* dataSet : dataSets) {
        if (!dataSet->toVerify()) {
            continue;
        }
        for (PlixValue* value : dataSet->getValues()) {
            value->setBackToOldValue();
        }
    }
}
