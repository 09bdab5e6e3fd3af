#pragma once

#include <string>
#include <vector>

class PlixDataSet;
class PlixValue;
class PlixctlCheckReport;

// The checks of the change actions of a loaded model: Execute placeholders
// that name no member, WriteToFile files in a directory that does not exist,
// and actions on values of read-only store files, which no set reaches.
class PlixctlActionChecks
{
public:
    explicit PlixctlActionChecks(PlixctlCheckReport& report) : report(report) {}

    void run(const std::vector<PlixDataSet*>& dataSets);

private:
    void checkValueActions(const PlixValue& value, bool readOnly);
    void checkDataSetActions(const PlixDataSet& dataSet, bool readOnly);
    void checkPlaceholders(const std::string& command, const std::vector<std::string>& names,
                           const std::string& filled);
    void checkDirectory(const std::string& path);

    PlixctlCheckReport& report;
};
