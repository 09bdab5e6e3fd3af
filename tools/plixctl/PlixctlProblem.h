#pragma once

#include <string>

// One thing wrong with a configuration, where it stands: an XML line, or a
// jpath in a store file.
struct PlixctlProblem
{
    std::string file;
    // The line of the XML file, 0 for a problem in a store file.
    long line = 0;
    // The jpath in the store file, empty for a problem in the XML file.
    std::string jpath;
    // The XML-ID of the value, or the name of the data set, where there is one.
    std::string subject;
    std::string message;
    // The status the service ends its start-up with; 0 when it starts all
    // the same (a warning).
    int exitStatus = 0;
};
