#include "PlixGatewayValidator.h"

PlixGatewayValidator::PlixGatewayValidator(PlixValue& value) : PlixValueValidator(value)
{
}

unsigned PlixGatewayValidator::validate()
{
    return 0;
}
