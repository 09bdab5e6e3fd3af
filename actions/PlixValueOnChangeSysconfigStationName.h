#pragma once

#include "PlixValueOnChangeHandler.h"

// Gives the device the value's content as its station name.
class PlixValueOnChangeSysconfigStationName : public PlixValueOnChangeHandler
{
public:
    explicit PlixValueOnChangeSysconfigStationName(PlixValue& value);

    unsigned onChange() override;
};
