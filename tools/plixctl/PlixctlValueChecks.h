#pragma once

#include <vector>

class PlixDataSet;
class PlixValue;
class PlixctlCheckReport;

// The checks of a loaded model that the service's start-up does not make:
// values without content, linked values of different types, password forms
// without their salt, and stored contents that their own validators or their
// data set's validators refuse, which the first commit that touches them
// would find.
class PlixctlValueChecks
{
public:
    explicit PlixctlValueChecks(PlixctlCheckReport& report) : report(report) {}

    void run(const std::vector<PlixDataSet*>& dataSets);

private:
    void checkValue(PlixValue& value);
    void checkContent(const PlixValue& value);
    void checkLink(const PlixValue& value);
    void checkPassword(const PlixValue& value);
    void checkValidator(PlixValue& value);
    void checkDataSet(PlixDataSet& dataSet);

    PlixctlCheckReport& report;
};
