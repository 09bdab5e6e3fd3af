#pragma once

class PlixValue;

// Judges the value a client wants to set; 0 means valid, anything else is a
// result code returned to the client.
class PlixValueValidator
{
public:
    explicit PlixValueValidator(PlixValue& value) : value(value) {}
    virtual ~PlixValueValidator() = default;
    virtual unsigned validate() = 0;

protected:
    PlixValue& value;
};
