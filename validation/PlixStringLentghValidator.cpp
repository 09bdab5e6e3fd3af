#include "PlixStringLentghValidator.h"

#include "PlixValue.h"

PlixStringLentghValidator::PlixStringLentghValidator(PlixValue& value) : PlixValueValidator(value)
{
}

unsigned PlixStringLentghValidator::validate()
{
    const PlixVariant wanted = value.getWantedSetValue();
    long length = 0;
    switch (wanted.getDataType()) {
    case PlixVariant::PASSWORD:
        // The stored hash says nothing about what the user typed.
        length = wanted.asPlixPassword().getPlainTextLength();
        break;
    case PlixVariant::STRING:
        length = static_cast<long>(wanted.asString().size());
        break;
    default:
        return 204;
    }
    return (minLength <= length && length <= maxLength) ? 0 : 205;
}
