#pragma once

#include "PlixPossibleValuesValidator.h"

// Accepts an integer equal to one of the declared numbers.
class PlixPossibleIntValuesValidator : public PlixPossibleValuesValidator<int>
{
public:
    explicit PlixPossibleIntValuesValidator(PlixValue& value);

protected:
    // Read as strtol does: leading blanks skipped, stops at the first
    // non-digit, a piece without digits is 0.
    int fromPiece(const std::string& piece) const override;
    int fromVariant(const PlixVariant& wanted) const override;
};
