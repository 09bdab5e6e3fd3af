#include "PlixPossibleIntValuesValidator.h"
#include "PlixNumber.h"

#include <cstdlib>

PlixPossibleIntValuesValidator::PlixPossibleIntValuesValidator(PlixValue& value)
    : PlixPossibleValuesValidator<int>(value)
{
}

int PlixPossibleIntValuesValidator::fromPiece(const std::string& piece) const
{
    return plixStrtoInt(piece.c_str());
}

int PlixPossibleIntValuesValidator::fromVariant(const PlixVariant& wanted) const
{
    return wanted.asInt();
}
