#pragma once

#include "PlixOnChangeBuilder.h"
#include "PlixValidationBuilder.h"
#include "PlixValueTable.h"
#include "PlixXML_Position.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class PlixDataSet;
class PlixFile;
class PlixJsonModifier;
class PlixLoadReport;
class PlixValueValidator;
class PlixDatasetValidator;
class PlixValueOnChangeHandler;
class PlixDatasetOnChangeHandler;
struct XML_ParserStruct;

// Builds the whole configuration model from the XML file while it is
// constructed: store files, data sets, values, validators and change actions.
// It reacts to element names in document order and does not check nesting.
// It owns what it creates except the values (the engine's table holds them).
class PlixXML_Parser
{
public:
    using ValueTable = PlixValueTable;

    // The report hears what stops the loading and where the loader stands;
    // the service's report ends the process at a stop.
    PlixXML_Parser(std::string path, std::string unused, ValueTable* values,
                   PlixJsonModifier* jsonModifier, std::vector<PlixDataSet*>* dataSets,
                   PlixLoadReport* report = nullptr);
    virtual ~PlixXML_Parser();
    PlixXML_Parser(const PlixXML_Parser&) = delete;
    PlixXML_Parser& operator=(const PlixXML_Parser&) = delete;

    int parse_XML();
    void start_element(const char* name, const char** attributes);
    void end_element(const char* name);
    void handle_data(const char* data, int length);

private:
    bool readFile();
    void startPanelFile(const char** attributes);
    void startDataSet(const char** attributes);
    void startValue(const char** attributes);
    void declareValue(const std::string& name);
    void endJPath();
    void endFile();
    void stopLoading(int status);
    void releaseParseState();

    std::string path;
    std::string unused;
    // The whole file and its terminating zero: expat sees the text up to the
    // first zero byte.
    std::string buffer;
    // The last chunk of character data: the text of the end tag that follows.
    std::string text;
    PlixXML_Position position;
    ValueTable* values;
    PlixJsonModifier* jsonModifier;
    std::vector<PlixDataSet*>* dataSets;
    std::vector<std::unique_ptr<PlixFile>> files;
    std::vector<std::unique_ptr<PlixDataSet>> ownedDataSets;
    std::unordered_map<std::string, PlixValue*> valuesByJPath;
    PlixValidationBuilder validations;
    PlixOnChangeBuilder changeActions;
    PlixLoadReport& report;
    // While expat runs, a fatal declaration stops it and the exit waits until
    // control is back out of expat's frames.
    XML_ParserStruct* expat = nullptr;
    int pendingExit = 0;
};
