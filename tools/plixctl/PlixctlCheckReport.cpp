#include "PlixctlCheckReport.h"

#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixLog.h"
#include "PlixValue.h"
#include "PlixXML_Attributes.h"
#include "PlixXML_Position.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

bool wholeNumber(const char* text, bool integer)
{
    char* end = nullptr;
    errno = 0;
    if (integer) {
        const long number = std::strtol(text, &end, 10);
        return *text != '\0' && *end == '\0' && errno == 0 && number >= INT_MIN &&
               number <= INT_MAX;
    }
    std::strtod(text, &end);
    return *text != '\0' && *end == '\0' && errno == 0;
}

// Whether the value's type converts the text of a default without losing
// it: the service reads "12abc" as the int 12 and "yes" as false.
bool defaultFits(const std::string& type, const char* text)
{
    if (type == "string" || type.find("password") != std::string::npos) {
        return true;
    }
    if (type == "int") {
        return wholeNumber(text, true);
    }
    if (type == "double" || type == "float") {
        return wholeNumber(text, false);
    }
    return type == "bool" && (std::strcmp(text, "true") == 0 || std::strcmp(text, "false") == 0);
}

std::string xmlIdOf(const PlixValue& value)
{
    return value.getDataSet().getName() + "/" + value.getName();
}

} // namespace

PlixctlCheckReport::PlixctlCheckReport(std::string xmlPath) : xmlPath(std::move(xmlPath))
{
    here.file = this->xmlPath;
}

void PlixctlCheckReport::logged(int priority, const std::string& text)
{
    if (priority <= LOG_WARNING) {
        messages.push_back(text);
    }
}

void PlixctlCheckReport::file(const std::string& message, int exitStatus)
{
    PlixctlProblem problem = here;
    problem.exitStatus = exitStatus;
    problem.message = messages.empty() ? message : "";
    for (const std::string& text : messages) {
        problem.message += (problem.message.empty() ? "" : "; ") + text;
    }
    messages.clear();
    found.push_back(std::move(problem));
}

void PlixctlCheckReport::finish()
{
    moveTo(here);
}

void PlixctlCheckReport::moveTo(PlixctlProblem place)
{
    if (!messages.empty()) {
        file("");
    }
    here = std::move(place);
}

PlixctlProblem PlixctlCheckReport::atXmlLine(long line) const
{
    PlixctlProblem place;
    place.file = xmlPath;
    place.line = line;
    return place;
}

void PlixctlCheckReport::stop(int status)
{
    if (valueRead != nullptr) {
        unreadValues.insert(valueRead);
    } else if (fileRead != nullptr) {
        unreadFiles.insert(fileRead->getName());
    }
    file("", status);
}

void PlixctlCheckReport::malformed(long line, const char* expatText)
{
    moveTo(atXmlLine(line));
    file(std::string("Error: ") + expatText +
         " (the service loads what comes before and ignores the rest)");
}

void PlixctlCheckReport::afterStartTag(long line, const char* element, const char** attributes,
                                       const PlixXML_Position& position)
{
    moveTo(atXmlLine(line));
    if (std::strcmp(element, "Value") == 0) {
        noteRepeatedId(attributes, position);
        noteDefault(attributes, position);
    }
    noteDeclarations(line, position);
}

void PlixctlCheckReport::atEndTag(long line)
{
    moveTo(atXmlLine(line));
    fileRead = nullptr;
    valueRead = nullptr;
}

void PlixctlCheckReport::aboutLine(long line)
{
    moveTo(atXmlLine(line));
}

void PlixctlCheckReport::readingFile(const PlixFile& file)
{
    PlixctlProblem place;
    place.file = file.getPath();
    place.subject = file.getName();
    moveTo(place);
    fileRead = &file;
}

void PlixctlCheckReport::readingValue(const PlixValue& value)
{
    atValue(value);
    valueRead = &value;
}

void PlixctlCheckReport::atValue(const PlixValue& value)
{
    const PlixFile* store = value.getDataSet().getFile();
    PlixctlProblem place = atXmlLine(0);
    if (value.inJson() && store != nullptr) {
        place.file = store->getPath();
        place.jpath = value.getJPath();
    } else {
        place.line = lines.count(&value) != 0 ? lines.at(&value) : 0;
    }
    place.subject = xmlIdOf(value);
    moveTo(place);
    valueRead = nullptr;
}

void PlixctlCheckReport::atDataSet(const PlixDataSet& dataSet)
{
    atObject(&dataSet, dataSet.getName());
}

void PlixctlCheckReport::atObject(const void* object, const std::string& subject)
{
    PlixctlProblem place = atXmlLine(lines.count(object) != 0 ? lines.at(object) : 0);
    place.subject = subject;
    moveTo(place);
}

bool PlixctlCheckReport::unread(const PlixValue& value) const
{
    const PlixFile* store = value.getDataSet().getFile();
    return unreadValues.count(&value) != 0 ||
           (store != nullptr && unreadFiles.count(store->getName()) != 0);
}

// Every object of the model that the loader made at this tag is given the
// tag's line, so that a later check can say where it was declared.
void PlixctlCheckReport::noteDeclarations(long line, const PlixXML_Position& position)
{
    if (const PlixDataSet* dataSet = position.dataSet) {
        noteLine(dataSet, line);
        for (const auto* handler : dataSet->getDatasetOnChangeHandlers()) {
            noteLine(handler, line);
        }
        for (const auto* validator : dataSet->getDataSetValidators()) {
            noteLine(validator, line);
        }
    }
    if (const PlixValue* value = position.value) {
        noteLine(value, line);
        for (const auto* handler : value->getOnChangeHandlers()) {
            noteLine(handler, line);
        }
        noteLine(value->getValueValidator(), line);
    }
}

void PlixctlCheckReport::noteLine(const void* object, long line)
{
    if (object != nullptr) {
        lines.emplace(object, line);
    }
}

void PlixctlCheckReport::noteRepeatedId(const char** attributes, const PlixXML_Position& position)
{
    if (position.dataSet == nullptr) {
        return;
    }
    plixForEachAttributeNamed(attributes, "name", [&](const char* name) {
        const std::string xmlId = position.dataSet->getName() + "/" + name;
        if (!declaredIds.insert(xmlId).second) {
            here.subject = xmlId;
            file("the XML-ID is declared twice: this declaration changes the first one "
                 "and the data set lists it twice");
        }
    });
}

void PlixctlCheckReport::noteDefault(const char** attributes, const PlixXML_Position& position)
{
    if (position.value == nullptr) {
        return;
    }
    const std::string type = position.value->getValueType();
    plixForEachAttributeNamed(attributes, "default", [&](const char* text) {
        if (!defaultFits(type, text)) {
            here.subject = xmlIdOf(*position.value);
            file("the default \"" + std::string(text) + "\" cannot be taken by the type \"" + type +
                 "\"");
        }
    });
}
