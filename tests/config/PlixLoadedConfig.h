#pragma once

#include "PlixConfigTestDir.h"
#include "PlixJsonModifier.h"
#include "PlixXML_Parser.h"

#include <memory>
#include <string>
#include <vector>

class PlixDataSet;

// What the engine keeps of a loaded configuration, built from XML text
// written into a test directory, with helpers to read the captured output.
class PlixLoadedConfig
{
public:
    // The XML body inside the root element, with its declaration.
    static std::string document(const std::string& body);
    static std::vector<std::string> lines(const std::string& output);
    // A death-test pattern matching exactly these lines at the end of the
    // output (stdout redirected to stderr).
    static std::string endsWithLines(const std::vector<std::string>& expected);
    // Sends standard output to standard error, for death tests.
    static void stdoutToStderr();

    // Writes the document as config.xml and loads it.
    void load(const std::string& body);
    void loadFile(const std::string& xmlPath);
    // Loads with standard output captured; returns the output.
    std::string loadCapturing(const std::string& body);
    // Reads every value in JSON as the engine does: unlinked values first.
    void readAll();

    PlixValue& value(const std::string& xmlId) { return values.at(xmlId); }
    PlixDataSet& dataSet(const std::string& name);

    PlixConfigTestDir dir;
    PlixXML_Parser::ValueTable values;
    PlixJsonModifier json;
    std::vector<PlixDataSet*> dataSets;
    std::unique_ptr<PlixXML_Parser> parser;
};
