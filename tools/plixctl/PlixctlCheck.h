#pragma once

#include "PlixctlProblem.h"

#include <ostream>
#include <string>
#include <vector>

// "plixctl check": loads a configuration with the service's own loader, with
// no bus, no lock and no action run, checks the model it built and prints
// every problem, one a line (or one JSON document).
class PlixctlCheck
{
public:
    static constexpr int starts = 0;
    static constexpr int wouldNotStart = 1;
    static constexpr int startsWithWarnings = 2;

    // Every problem of the configuration at xmlPath, in the order found.
    static std::vector<PlixctlProblem> problemsOf(const std::string& xmlPath);
    // 1 when a problem ends the service's start-up, else 2 when there is any
    // problem, else 0.
    static int statusOf(const std::vector<PlixctlProblem>& problems);
    // One problem as its line: "FILE:LINE: " or "FILE: jpath JPATH: ", the
    // severity, the XML-ID or data set, and the message.
    static std::string lineOf(const PlixctlProblem& problem);
    // Checks the configuration and prints the result; answers the status.
    static int run(const std::string& xmlPath, bool json, std::ostream& out);
};
