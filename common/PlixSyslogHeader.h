#pragma once

#include <ctime>
#include <string>

// The start of a system-log datagram exactly as the C library's syslog()
// writes it without openlog(): "<PRI>Mmm dd hh:mm:ss ident: ", the priority
// in the user facility unless it names one, the local time in the C locale,
// the program's short name. The time and name part is made once a second.
class PlixSyslogHeader
{
public:
    // "<PRI>" for the given priority.
    static std::string priorityText(int priority);
    // "Mmm dd hh:mm:ss ident: " for the given second.
    const std::string& stampAndIdent(std::time_t now);

private:
    std::time_t mSecond = -1;
    std::string mStamp;
};
