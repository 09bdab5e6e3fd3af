#pragma once

#include <string>
#include <vector>

class PlixDataSet;
class PlixJsonModifier;
class PlixValue;

// Closes a transaction that recorded at least one set: applies the wanted
// values, validates the marked data sets, runs the value and data-set change
// actions and, for a persistent transaction, writes the JSON store. The first
// failure puts the in-memory values back and ends the run with its code; the
// caller clears the transaction afterwards in every case. A store file that
// cannot be written is no failure of the commit: the values stay applied and
// the file stays marked for rewrite.
class PlixCommit
{
public:
    PlixCommit(std::vector<PlixValue*> changedValues, const std::vector<PlixDataSet*>& dataSets);

    unsigned run(bool persistent, PlixJsonModifier& jsonModifier);
    // After a run: the path of a store file holding a value of this commit
    // that could not be written, or empty.
    const std::string& unstoredFile() const { return unstored; }

private:
    void apply();
    unsigned validateDataSets();
    unsigned runValueActions();
    unsigned runDataSetActions();
    void persist(PlixJsonModifier& jsonModifier);
    void findUnstoredFile();
    void rollBackChangedValues();
    void rollBackMarkedDataSets();

    std::vector<PlixValue*> changedValues;
    const std::vector<PlixDataSet*>& dataSets;
    std::string unstored;
};
