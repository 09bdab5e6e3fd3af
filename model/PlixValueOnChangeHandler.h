#pragma once

#include "PlixTriggerFlags.h"

class PlixValue;

// A side effect run when one value changed; 0 means done.
class PlixValueOnChangeHandler : public PlixTriggerFlags
{
public:
    explicit PlixValueOnChangeHandler(PlixValue& value) : value(value) {}
    virtual ~PlixValueOnChangeHandler() = default;
    virtual unsigned onChange() = 0;

protected:
    PlixValue& value;
};
