#pragma once

#include "Jzon.h"
#include "PlixVariant.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class PlixDataSet;
class PlixValueValidator;
class PlixValueOnChangeHandler;

// One configuration value declared by a Value element. Its current content is
// shared with every value linked to it (same jpath), and like every content it
// lives for the whole run, so values point at it plainly; the old slot keeps the
// content from before the running transaction, the wanted slot the content a
// client last offered. A device declares thousands of values and sets few, and
// few have a validator, actions or a link: the slots are made by the first
// set, and validator, actions and link live in a block made by the first of
// them, so that the many other values stay small. Content, validator, actions,
// node, link and data set are not owned.
class PlixValue
{
public:
    PlixValue(std::string name, PlixDataSet& dataSet);
    // Copies everything but the value type and the old and wanted slots; the
    // copy shares the current content.
    PlixValue(const PlixValue& other);
    PlixValue& operator=(const PlixValue&) = delete;

    const std::string& getName() const { return name; }
    std::string getJPath() const { return jpath; }
    void setJPath(std::string path) { jpath = std::move(path); }
    std::string getValueType() const { return typeText(); }
    void setValueType(std::string type);
    PlixDataSet& getDataSet() const { return dataSet; }
    PlixValueValidator* getValueValidator() const;
    void setValidator(PlixValueValidator* v) { attached().validator = v; }
    std::vector<PlixValueOnChangeHandler*> getOnChangeHandlers() const;
    void setOnChangeHandler(PlixValueOnChangeHandler* handler)
    {
        attached().onChangeHandlers.push_back(handler);
    }
    Jzon::Node* getJsonNode() const { return jsonNode; }
    void setJsonNode(Jzon::Node* node) { jsonNode = node; }
    PlixValue* getLinkedPlixValueObject() const;
    bool inJson() const { return isInJson; }
    bool valueInJsonWillBeReadFromPreviousPlixValue() const { return linked; }
    void setValueInJsonWillBeReadFromPreviousPlixValue(PlixValue* earlier);

    // A copy of the current content; a value that has none yet gives NONE.
    PlixVariant getValue() const;
    PlixVariant* getValuePtr() const { return currentValue; }
    // Shares another value's content (from its getValuePtr()), which lives
    // for the whole run.
    void setValuePtr(PlixVariant* content);
    PlixVariant getWantedSetValue() const;

    unsigned setWantedSetValue(PlixVariant v);
    void setValue(PlixVariant v);
    void setBackToOldValue();
    void setDefaultValue(PlixVariant v);
    void setXML_Default_value(std::string text);
    void changeJsonNode();

private:
    struct Attachments
    {
        PlixValueValidator* validator = nullptr;
        std::vector<PlixValueOnChangeHandler*> onChangeHandlers;
        PlixValue* linkedValue = nullptr;
    };
    struct Slots
    {
        PlixVariant old;
        PlixVariant wanted;
    };

    // The block of attachments, made on the first one.
    Attachments& attached();
    // The old and wanted slots, made on the first set.
    Slots& slotsInUse();
    // Writes into the shared content, making one if the value has none yet.
    void writeCurrent(const PlixVariant& v);
    const std::string& typeText() const;

    std::string name;
    std::string jpath;
    PlixDataSet& dataSet;
    std::unique_ptr<Attachments> attachments;
    PlixVariant* currentValue = nullptr;
    std::unique_ptr<Slots> slots;
    Jzon::Node* jsonNode = nullptr;
    // Thousands of values share a handful of type texts: each value knows
    // the number of its text in one table of every distinct text, kept for
    // the whole run. On a 64-bit build the number and the flags fill the
    // word a pointer to the text would take alone.
    std::uint32_t valueType;
    bool oldValueValid = false;
    bool isInJson = true;
    bool linked = false;
};
