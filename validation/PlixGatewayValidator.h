#pragma once

#include "PlixValueValidator.h"

// Marks a value as a gateway in the configuration. It accepts every text on
// purpose: the mark is wanted, a check is not.
class PlixGatewayValidator : public PlixValueValidator
{
public:
    explicit PlixGatewayValidator(PlixValue& value);

    unsigned validate() override;
};
