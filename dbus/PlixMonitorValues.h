#pragma once

#include <glib.h>

#include <string>

class Plix;

// Carries single values between the bus and the engine for the monitor
// interface, always through the engine's own typed operations so that every
// rule, code and log line is the engine's.
class PlixMonitorValues
{
public:
    // A value a client offers must be one of the four types the engine can
    // set: boolean, 32-bit integer, double or string.
    static bool settable(GVariant* value);

    // The typed set that matches the variant's type; a string for a password
    // value is its plain text.
    static int set(Plix& engine, const std::string& client, const std::string& xml_id,
                   GVariant* value);

    // The transient read that matches the value's data-type number; a value
    // whose content is no plain type is asked for as a string, so the engine
    // answers as a transient string read of it does (11 for a password, 9
    // for an undeclared XML-ID). On 0, *out is a new floating variant.
    static int readTransient(Plix& engine, const std::string& client, const std::string& xml_id,
                             int dataType, GVariant** out);
};
