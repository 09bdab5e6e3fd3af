#pragma once

#include "PlixLogConnection.h"
#include "PlixSyslogHeader.h"

#include <chrono>
#include <cstddef>
#include <string>

// What the service hands to the system logger, and how long it lets a logger
// keep it waiting: a message the logger cannot take at once is given one
// short wait (the patience); a logger that did not take it by then is
// stalled, and each message it cannot take at once is dropped without a
// wait. The first message it takes again is preceded by a notice saying how
// many were dropped.
class PlixSystemLog
{
public:
    PlixSystemLog(std::string path, std::chrono::milliseconds patience);

    // Sends one message; returns the text of the notice sent just before it,
    // or an empty text.
    std::string write(int priority, const char* text, std::size_t length);

    // The notice for count dropped messages.
    static std::string droppedNotice(std::size_t count);

private:
    PlixLogSend send(int priority, const char* text, std::size_t length);
    bool announceDropped(std::string& notice);

    PlixLogConnection mConnection;
    PlixSyslogHeader mHeader;
    std::chrono::milliseconds mPatience;
    // Messages dropped since the logger stalled; none while it is not.
    std::size_t mDropped = 0;
};
