#pragma once

#include "PlixPossibleValuesValidator.h"

// Accepts a string equal, byte for byte, to one of the declared texts.
class PlixStringValidator : public PlixPossibleValuesValidator<std::string>
{
public:
    explicit PlixStringValidator(PlixValue& value);

protected:
    std::string fromPiece(const std::string& piece) const override;
    std::string fromVariant(const PlixVariant& wanted) const override;
};
