#pragma once

#include "PlixValueValidator.h"

#include <climits>

// Accepts an integer between a minimum and a maximum, both inclusive.
class PlixMinMaxValidator : public PlixValueValidator
{
public:
    explicit PlixMinMaxValidator(PlixValue& value);

    void setMin(int min) { this->min = min; }
    void setMax(int max) { this->max = max; }

    unsigned validate() override;

private:
    // A declaration without "min" or "max" leaves that side open: the bounds
    // start at the ends of the signed 32-bit range.
    int min = INT_MIN;
    int max = INT_MAX;
};
