#pragma once

#include "PlixVariant.h"

#include <string>

class PlixDataSet;

// Reading the members that a data-set rule or action depends on. A member
// missing from the data set means the configuration file is broken, and the
// service must not go on guessing: the read ends the process.
class PlixDataSetMember
{
public:
    // The current content of the member. When the data set has no member of
    // that name, logs failureFormat at error level with the lookup's text in
    // its one "%s" and ends the process with status 16.
    static PlixVariant readOrExit(const PlixDataSet& dataSet, const std::string& name,
                                  const char* failureFormat);
};
