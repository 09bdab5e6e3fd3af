#pragma once

#include "PlixPassword.h"

#include <cstdint>
#include <memory>
#include <string>

// The tagged value that every configuration value, D-Bus get/set and
// validator works with: one tag and one slot per kind of content. Every
// declared value holds one, so it is kept small: no virtual table, the
// members ordered by size so that only the end is padded, the tag in one byte.
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
    ~PlixVariant() = default;
    PlixVariant(const PlixVariant& other);
    PlixVariant& operator=(const PlixVariant& other);
    PlixVariant(PlixVariant&&) noexcept = default;
    PlixVariant& operator=(PlixVariant&&) noexcept = default;

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
    DataType dataType() const { return static_cast<DataType>(typeTag); }
    void takeTypeIfNone(DataType type);
    // The password content, made when first written; a variant that has none
    // reads as a default-constructed password.
    PlixPassword& password();
    const PlixPassword& passwordOrDefault() const;

    std::string stringContent;
    double doubleContent = 0.0;
    // A password content is large and rare: only a variant that has been
    // given one holds it, so that the many other values stay small.
    std::unique_ptr<PlixPassword> passwordContent;
    int intContent = 0;
    // The DataType, kept in one byte.
    std::uint8_t typeTag = NONE;
    bool boolContent = false;
};
