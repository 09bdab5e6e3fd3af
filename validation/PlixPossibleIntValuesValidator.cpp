#include "PlixPossibleIntValuesValidator.h"

#include <cstdlib>

PlixPossibleIntValuesValidator::PlixPossibleIntValuesValidator(PlixValue& value)
    : PlixPossibleValuesValidator<int>(value)
{
}

int PlixPossibleIntValuesValidator::fromPiece(const std::string& piece) const
{
    return static_cast<int>(std::strtol(piece.c_str(), nullptr, 10));
}

int PlixPossibleIntValuesValidator::fromVariant(const PlixVariant& wanted) const
{
    return wanted.asInt();
}
