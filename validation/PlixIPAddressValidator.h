#pragma once

#include "PlixValueValidator.h"

// Marks a value as an IP address in the configuration. It accepts every text on
// purpose: the mark is wanted, a check is not.
class PlixIPAddressValidator : public PlixValueValidator
{
public:
    explicit PlixIPAddressValidator(PlixValue& value);

    unsigned validate() override;
};
