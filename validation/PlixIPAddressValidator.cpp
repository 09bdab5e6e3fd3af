#include "PlixIPAddressValidator.h"

PlixIPAddressValidator::PlixIPAddressValidator(PlixValue& value) : PlixValueValidator(value)
{
}

unsigned PlixIPAddressValidator::validate()
{
    return 0;
}
