#pragma once

#include <vector>

class PlixDataSet;
class PlixJsonModifier;
class PlixValue;

// Closes a transaction that recorded at least one set: applies the wanted
// values, validates the marked data sets, runs the value and data-set change
// actions and, for a persistent transaction, writes the JSON store. The first
// failure puts the in-memory values back and ends the run with its code; the
// caller clears the transaction afterwards in every case.
class PlixCommit
{
public:
    PlixCommit(std::vector<PlixValue*> changedValues, const std::vector<PlixDataSet*>& dataSets);

    unsigned run(bool persistent, PlixJsonModifier& jsonModifier);

private:
    void apply();
    unsigned validateDataSets();
    unsigned runValueActions();
    unsigned runDataSetActions();
    void persist(PlixJsonModifier& jsonModifier);
    void rollBackChangedValues();
    void rollBackMarkedDataSets();

    std::vector<PlixValue*> changedValues;
    const std::vector<PlixDataSet*>& dataSets;
};
