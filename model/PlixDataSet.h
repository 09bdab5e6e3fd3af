#pragma once

#include "PlixVariant.h"

#include <cstddef>
#include <string>
#include <vector>

class PlixFile;
class PlixValue;
class PlixDatasetOnChangeHandler;
class PlixDatasetValidator;

// A named group of values, validated and acted on as a whole at commit.
// Holds pointers into the engine's value table; owns nothing.
class PlixDataSet
{
public:
    PlixDataSet() = default;
    // Copies everything but the by-name index and the verify mark: a copy
    // finds by name only the members inserted into it after it was made.
    PlixDataSet(const PlixDataSet& other);
    PlixDataSet& operator=(const PlixDataSet&) = delete;
    virtual ~PlixDataSet() = default;

    void setName(std::string name) { this->name = std::move(name); }
    std::string getName() const { return name; }
    void setFile(PlixFile* file) { this->file = file; }
    PlixFile* getFile() const { return file; }

    void insertPlixValue(PlixValue* value);
    // Gives back the room that inserts left beyond the members, once the
    // set is complete.
    void shrinkToFit();
    // Both throw std::out_of_range ("map::at") for an unknown member name.
    PlixValue* getValue(std::string name) const;
    PlixVariant getAsVariant(std::string name) const;

    std::vector<PlixValue*> getValues() const { return values; }
    std::vector<PlixDatasetOnChangeHandler*> getDatasetOnChangeHandlers() const
    {
        return onChangeHandlers;
    }
    std::vector<PlixDatasetValidator*> getDataSetValidators() const { return validators; }
    void setDatasetOnChangeHandler(PlixDatasetOnChangeHandler* handler)
    {
        onChangeHandlers.push_back(handler);
    }
    void setValidator(PlixDatasetValidator* validator) { validators.push_back(validator); }

    bool toVerify() const { return verify; }
    void setVerify() { verify = true; }
    void resetVerify() { verify = false; }

private:
    void makeByNameList() const;

    PlixFile* file = nullptr;
    std::vector<PlixValue*> values;
    // Where the members found by name begin.
    std::size_t firstNamed = 0;
    // The members by name: a flat map sorted byte-wise by name that holds
    // the first member of each name, made from the members at the first
    // look-up after an insert, so a member costs one pointer, and nothing in
    // a set that is never looked up by name. Members are looked up by name at
    // commit, after the whole set is loaded and on the one thread that owns
    // the model, so it is made once and the const look-up may make it.
    mutable std::vector<PlixValue*> valuesByName;
    // How many members the by-name map was made from.
    mutable std::size_t namedFrom = 0;
    std::vector<PlixDatasetOnChangeHandler*> onChangeHandlers;
    std::string name;
    std::vector<PlixDatasetValidator*> validators;
    bool verify = false;
};
