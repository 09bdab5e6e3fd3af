#include "PlixXML_Parser.h"

#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixJsonModifier.h"
#include "PlixLoadReport.h"
#include "PlixLog.h"
#include "PlixXML_Attributes.h"

#include <expat.h>

#include <cstdio>
#include <cstring>

namespace {
void XMLCALL startProxy(void* loader, const XML_Char* name, const XML_Char** attributes)
{
    static_cast<PlixXML_Parser*>(loader)->start_element(name, attributes);
}

void XMLCALL endProxy(void* loader, const XML_Char* name)
{
    static_cast<PlixXML_Parser*>(loader)->end_element(name);
}

void XMLCALL dataProxy(void* loader, const XML_Char* data, int length)
{
    static_cast<PlixXML_Parser*>(loader)->handle_data(data, length);
}

bool is(const char* name, const char* element)
{
    return std::strcmp(name, element) == 0;
}
} // namespace

PlixXML_Parser::PlixXML_Parser(std::string path, std::string unused, ValueTable* values,
                               PlixJsonModifier* jsonModifier, std::vector<PlixDataSet*>* dataSets,
                               PlixLoadReport* report)
    : path(std::move(path)), unused(std::move(unused)), values(values), jsonModifier(jsonModifier),
      dataSets(dataSets), report(report != nullptr ? *report : PlixLoadReport::service())
{
    if (readFile()) {
        parse_XML();
    }
    releaseParseState();
    for (auto& file : files) {
        this->jsonModifier->add_panel_file(file.get());
    }
}

PlixXML_Parser::~PlixXML_Parser() = default;

// The file's text and the jpath index serve the parse only; the model lives
// for the whole run, they need not, nor the room that the data sets' lists
// grew into while their values were declared one by one.
void PlixXML_Parser::releaseParseState()
{
    std::string().swap(buffer);
    std::string().swap(text);
    std::unordered_map<std::string, PlixValue*>().swap(valuesByJPath);
    for (const auto& dataSet : ownedDataSets) {
        dataSet->shrinkToFit();
    }
}

bool PlixXML_Parser::readFile()
{
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (file == nullptr) {
        plixLog(LOG_ERR, "Failed to open xml file %s", path.c_str());
        report.stop(1);
        return false;
    }
    char chunk[65536];
    std::size_t got = 0;
    while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
        buffer.append(chunk, got);
    }
    std::fclose(file);
    return true;
}

int PlixXML_Parser::parse_XML()
{
    plixLog(LOG_NOTICE, "Parsing %s", path.c_str());
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                        XML_ParserFree);
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), startProxy, endProxy);
    XML_SetCharacterDataHandler(parser.get(), dataProxy);
    expat = parser.get();
    XML_Status status = XML_Parse(parser.get(), buffer.c_str(),
                                  static_cast<int>(std::strlen(buffer.c_str())), XML_TRUE);
    expat = nullptr;
    if (pendingExit != 0) {
        parser.reset();
        report.stop(pendingExit);
    }
    if (status == XML_STATUS_ERROR) {
        report.malformed(static_cast<long>(XML_GetErrorLineNumber(parser.get())),
                         XML_ErrorString(XML_GetErrorCode(parser.get())));
    }
    parser.reset();
    changeActions.warnAboutRefusedCommands(report);
    plixLog(LOG_NOTICE, "Finished parsing %s", path.c_str());
    return 0;
}

void PlixXML_Parser::start_element(const char* name, const char** attributes)
{
    if (pendingExit != 0) {
        return;
    }
    if (is(name, "Panel_file")) {
        startPanelFile(attributes);
    } else if (is(name, "DataSet")) {
        startDataSet(attributes);
    } else if (is(name, "Value")) {
        startValue(attributes);
    } else if (is(name, "validation")) {
        validations.build(attributes, position);
    } else if (is(name, "onChange")) {
        changeActions.build(attributes, position,
                            static_cast<long>(XML_GetCurrentLineNumber(expat)));
    }
    report.afterStartTag(static_cast<long>(XML_GetCurrentLineNumber(expat)), name, attributes,
                         position);
}

void PlixXML_Parser::end_element(const char* name)
{
    if (pendingExit != 0) {
        return;
    }
    report.atEndTag(static_cast<long>(XML_GetCurrentLineNumber(expat)));
    if (is(name, "Panel_file") && !files.empty()) {
        files.back()->setPath(text);
    } else if (is(name, "jpath")) {
        endJPath();
    } else if (is(name, "File")) {
        endFile();
    }
}

// Each chunk replaces the last one: an end tag sees only the last piece of
// text that expat delivered before it.
void PlixXML_Parser::handle_data(const char* data, int length)
{
    if (pendingExit == 0) {
        text.assign(data, static_cast<std::size_t>(length));
    }
}

void PlixXML_Parser::startPanelFile(const char** attributes)
{
    files.push_back(std::make_unique<PlixFile>());
    PlixFile& file = *files.back();
    plixForEachAttribute(attributes, [&](const char* name, const char* value, const char**) {
        if (is(name, "name")) {
            plixLog(LOG_NOTICE, "XML:\tNode: Panel_file Name: %s", value);
            file.setName(value);
        } else if (is(name, "type")) {
            file.setType(value);
        }
    });
}

void PlixXML_Parser::startDataSet(const char** attributes)
{
    ownedDataSets.push_back(std::make_unique<PlixDataSet>());
    PlixDataSet* dataSet = ownedDataSets.back().get();
    dataSets->push_back(dataSet);
    position.dataSet = dataSet;
    position.dataSetLevel = true;
    plixForEachAttributeNamed(attributes, "ID", [&](const char* id) {
        plixLog(LOG_NOTICE, "XML:\tNode: DataSet Name: %s", id);
        dataSet->setName(id);
    });
}

// "name" must come first and "type" before "default": each acts on the
// current value, which a later "name" replaces.
void PlixXML_Parser::startValue(const char** attributes)
{
    position.dataSetLevel = false;
    plixForEachAttribute(attributes, [&](const char* name, const char* value, const char**) {
        if (is(name, "name")) {
            plixLog(LOG_NOTICE, "XML:\tNode: Value Name: %s", value);
            declareValue(value);
        } else if (is(name, "type") && position.value != nullptr) {
            position.value->setValueType(value);
        } else if (is(name, "default") && position.value != nullptr) {
            position.value->setXML_Default_value(value);
        }
    });
}

// A value outside any data set has no XML-ID and is not declared. A repeated
// XML-ID reuses the first entry, and the data set lists it once more.
void PlixXML_Parser::declareValue(const std::string& name)
{
    if (position.dataSet == nullptr) {
        return;
    }
    // Built in place, and only when the XML-ID is new: one lookup, no copy.
    std::string xmlId = position.dataSet->getName() + "/" + name;
    auto entry = values->try_emplace(std::move(xmlId), name, *position.dataSet).first;
    position.value = &entry->second;
    position.dataSet->insertPlixValue(position.value);
}

// The first value that names a jpath text is read from the file; any later
// one with the same text shares its content, whatever file it belongs to.
void PlixXML_Parser::endJPath()
{
    if (position.value == nullptr) {
        return;
    }
    position.value->setJPath(text);
    auto first = valuesByJPath.emplace(text, position.value);
    if (!first.second) {
        position.value->setValueInJsonWillBeReadFromPreviousPlixValue(first.first->second);
    }
}

// Files are matched in declaration order, so a Panel_file declared after
// the File that names it is not found.
void PlixXML_Parser::endFile()
{
    for (auto& file : files) {
        if (file->getName() == text) {
            if (position.dataSet != nullptr) {
                position.dataSet->setFile(file.get());
            }
            return;
        }
    }
    plixLog(LOG_ERR, "%s not declared at the beginning of the xml-config-file ", text.c_str());
    stopLoading(10);
}

// The process must not end from inside expat's C frames (an intercepted exit
// may unwind), so the parser is stopped and the exit follows once it returns.
// A report that goes on after a stop lets the parse go on too.
void PlixXML_Parser::stopLoading(int status)
{
    if (expat == nullptr || report.goesOnAfterStop()) {
        report.stop(status);
        return;
    }
    pendingExit = status;
    XML_StopParser(expat, XML_FALSE);
}
