#pragma once

#include <glib.h>
#include <nlohmann/json.hpp>

#include <string>

// Values as people and scripts write and read them: a VALUE from the command
// line read as the value's declared type text, and a value from the service
// shown as text or as JSON.
class PlixctlValueText
{
public:
    static bool isPassword(const std::string& type);

    // The variant to send for the text: an int for "int", a double for
    // "double" and "float", a boolean for "bool" (true, false, 1, 0), a
    // string for every other type (passwords included; an unknown XML-ID's
    // type is empty), so the service decides. Null with the problem in
    // *problem when the text does not read as the type; otherwise a new
    // floating variant.
    static GVariant* fromText(const std::string& type, const std::string& text,
                              std::string* problem);

    // The variant to send for a value of an exported document: its JSON kind
    // decides, as the export wrote each value with its own kind; a whole
    // number for a "double" or "float" value is sent as a double. Null with
    // the problem in *problem for anything else; otherwise a new floating
    // variant.
    static GVariant* fromJson(const std::string& type, const nlohmann::ordered_json& value,
                              std::string* problem);

    // Booleans as true/false, doubles in their shortest exact form, strings
    // as they are.
    static std::string toText(GVariant* value);
    static nlohmann::ordered_json toJson(GVariant* value);
};
