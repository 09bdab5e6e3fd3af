#pragma once

#include "PlixLoadReport.h"
#include "PlixctlProblem.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// Gathers the problems of a configuration while the service's own loader
// loads it and while the checks look at the model: every message logged at
// warning level or above is kept and filed, with the place the loader or the
// check stands at, as one problem. A stop is filed with its status, and the
// loading goes on. A warning that the loader logs by itself is filed where it
// was logged, as soon as the loader moves on.
class PlixctlCheckReport : public PlixLoadReport
{
public:
    explicit PlixctlCheckReport(std::string xmlPath);

    void stop(int status) override;
    bool goesOnAfterStop() const override { return true; }
    void malformed(long line, const char* expatText) override;
    void afterStartTag(long line, const char* element, const char** attributes,
                       const PlixXML_Position& position) override;
    void atEndTag(long line) override;
    void aboutLine(long line) override;
    void readingFile(const PlixFile& file) override;
    void readingValue(const PlixValue& value) override;

    // A message of the service, logged at priority.
    void logged(int priority, const std::string& text);

    // The checks stand at the value, the data set, or the XML line of the
    // model's object (a change action, a validator) that belongs to subject.
    void atValue(const PlixValue& value);
    void atDataSet(const PlixDataSet& dataSet);
    void atObject(const void* object, const std::string& subject);
    // Files one problem where the report stands: the messages logged since
    // the last one, or message when none was.
    void file(const std::string& message, int exitStatus = 0);
    // Forgets the messages logged since the last problem.
    void discardLogged() { messages.clear(); }
    // Files what is still logged; the list is then complete.
    void finish();

    const std::vector<PlixctlProblem>& problems() const { return found; }
    // Whether a stop kept the value's stored content from being read.
    bool unread(const PlixValue& value) const;

private:
    void moveTo(PlixctlProblem place);
    void noteDeclarations(long line, const PlixXML_Position& position);
    void noteDefault(const char** attributes, const PlixXML_Position& position);
    void noteRepeatedId(const char** attributes, const PlixXML_Position& position);
    void noteLine(const void* object, long line);
    PlixctlProblem atXmlLine(long line) const;

    std::string xmlPath;
    PlixctlProblem here;
    const PlixValue* valueRead = nullptr;
    const PlixFile* fileRead = nullptr;
    std::vector<std::string> messages;
    std::vector<PlixctlProblem> found;
    std::unordered_map<const void*, long> lines;
    std::unordered_set<std::string> declaredIds;
    std::unordered_set<const PlixValue*> unreadValues;
    std::unordered_set<std::string> unreadFiles;
};
