#pragma once

#include "PlixValue.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class PlixDataSet;
class PlixFile;
class PlixJsonModifier;
class PlixValueValidator;
class PlixDatasetValidator;
class PlixValueOnChangeHandler;
class PlixDatasetOnChangeHandler;

// Builds the whole configuration model from the XML file while it is
// constructed: store files, data sets, values, validators and change actions.
// It reacts to element names in document order and does not check nesting.
// It owns what it creates except the values (the engine's table holds them).
class PlixXML_Parser
{
public:
    using ValueTable = std::unordered_map<std::string, PlixValue>;

    PlixXML_Parser(std::string path, std::string unused, ValueTable* values,
                   PlixJsonModifier* jsonModifier, std::vector<PlixDataSet*>* dataSets);
    virtual ~PlixXML_Parser();
    PlixXML_Parser(const PlixXML_Parser&) = delete;
    PlixXML_Parser& operator=(const PlixXML_Parser&) = delete;

    int parse_XML();
    void start_element(const char* name, const char** attributes);
    void end_element(const char* name);
    void handle_data(const char* data, int length);
};
