#include "PlixStringValidator.h"

PlixStringValidator::PlixStringValidator(PlixValue& value)
    : PlixPossibleValuesValidator<std::string>(value)
{
}

std::string PlixStringValidator::fromPiece(const std::string& piece) const
{
    return piece;
}

std::string PlixStringValidator::fromVariant(const PlixVariant& wanted) const
{
    return wanted.asString();
}
