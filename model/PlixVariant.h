#pragma once

#include "PlixPassword.h"

#include <string>

// The tagged value that every configuration value, D-Bus get/set and
// validator works with: one tag and one slot per kind of content.
class PlixVariant
{
public:
    // The numbers are compared by the engine and the bus layer.
    enum DataType : int {
        BOOL = 0,
        STRING = 1,
        INT = 2,
        DOUBLE = 3,
        PASSWORD = 4,
        NONE = 5,
    };

    PlixVariant();
    explicit PlixVariant(std::string value);
    explicit PlixVariant(const char* value);
    explicit PlixVariant(bool value);
    explicit PlixVariant(int value);
    explicit PlixVariant(double value);
    explicit PlixVariant(PlixPassword value);
    virtual ~PlixVariant() = default;
    PlixVariant(const PlixVariant&) = default;
    PlixVariant& operator=(const PlixVariant&) = default;

    std::string asString() const;
    int asInt() const;
    double asDouble() const;
    bool asBool() const;
    PlixPassword asPlixPassword() const;
    int getDataType() const;

    // Each setter writes its own content; the tag changes only while it is NONE.
    void setValueString(std::string value);
    void setValueBool(bool value);
    void setValueInt(int value);
    void setValueDouble(double value);
    void setValuePassword(PlixPassword value);

    std::string getAsString() const;
    void print() const;

    bool operator==(const PlixVariant& other) const;
    bool operator!=(const PlixVariant& other) const;

private:
    void takeTypeIfNone(DataType type);

    int intContent = 0;
    std::string stringContent;
    bool boolContent = false;
    double doubleContent = 0.0;
    DataType dataType = NONE;
    PlixPassword passwordContent;
};
