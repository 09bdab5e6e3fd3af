#pragma once

#include "PlixValueValidator.h"

// Marks a value as a subnet mask in the configuration. It accepts every text on
// purpose: the mark is wanted, a check is not.
class PlixSubnetMaskValidator : public PlixValueValidator
{
public:
    explicit PlixSubnetMaskValidator(PlixValue& value);

    unsigned validate() override;
};
