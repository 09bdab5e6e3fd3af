#pragma once

#include "PlixRewriteAttempts.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class PlixFile;
class PlixLoadReport;
class PlixValue;
class PlixVariant;
class jzonFile;

// A store file whose latest write failed, and that write's error.
struct PlixStoreFailure
{
    std::string path;
    std::string error;
};

// Opens each JSON store file once at start-up, reads every value's initial
// content through its jpath, and writes back the files a commit changed.
class PlixJsonModifier
{
public:
    PlixJsonModifier();
    virtual ~PlixJsonModifier();
    PlixJsonModifier(const PlixJsonModifier&) = delete;
    PlixJsonModifier& operator=(const PlixJsonModifier&) = delete;

    // The report that hears what stops the loading; the service's own until
    // another is given.
    void setLoadReport(PlixLoadReport& report) { this->report = &report; }
    // Reads the file's document; a file that cannot be read or parsed stops
    // the loading with status 1.
    void add_panel_file(PlixFile* file);
    // Reads one value's initial content; a missing jpath stops the loading
    // with status 5. Returns 0.
    int get_value(PlixValue* value);
    // Writes every changed file that is not "read_only". A file that cannot
    // be written stays marked for rewrite, so every later call tries it
    // again. Returns how many files stay unwritten.
    int rewrite_json();
    // The files whose latest write failed, in the order of their Panel_file
    // elements.
    std::vector<PlixStoreFailure> failingFiles() const;
    // The content the store holds for the value as its latest commit left
    // it; false for a value that has no node or whose node gives none.
    static bool storedContent(const PlixValue& value, PlixVariant& content);
    // The path of the first declared store file; empty when none is declared.
    std::string firstStorePath() const;

private:
    struct Panel_file
    {
        PlixFile* file;
        std::unique_ptr<jzonFile> document;
        PlixRewriteAttempts attempts;
    };
    // Sets the value's node and content from the record's document.
    void readFrom(Panel_file& record, PlixValue* value);
    static bool rewrite(Panel_file& record);

    std::vector<Panel_file> records;
    // The records of each file name, in declaration order: a value reads
    // from every file of its data set's file name without comparing its
    // name with every declared file's.
    std::unordered_map<std::string, std::vector<std::size_t>> recordsByName;
    PlixLoadReport* report;
};
