#pragma once

#include "PlixValueValidator.h"

#include <climits>

// Bounds the length of a string, or of the plain text a password was made
// from. It stays silent on failure: the client learns only the code.
class PlixStringLentghValidator : public PlixValueValidator
{
public:
    explicit PlixStringLentghValidator(PlixValue& value);

    void setMinStringLentgh(int length) { minLength = length; }
    void setMaxStringLentgh(int length) { maxLength = length; }

    unsigned validate() override;

private:
    // A declaration without "min" or "max" leaves that side open: the bounds
    // start at the ends of the signed 32-bit range.
    int maxLength = INT_MAX;
    int minLength = INT_MIN;
};
