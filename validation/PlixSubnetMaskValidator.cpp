#include "PlixSubnetMaskValidator.h"

PlixSubnetMaskValidator::PlixSubnetMaskValidator(PlixValue& value) : PlixValueValidator(value)
{
}

unsigned PlixSubnetMaskValidator::validate()
{
    return 0;
}
