#pragma once

class PlixDataSet;
class PlixValue;

// The loops over a value's or a data set's change actions that commits,
// transient sets and the start-up pass share. Callers log and roll back in
// their own way; these only run the actions.
class PlixChangeActions
{
public:
    // Runs every action not reserved for the boot, in order, and stops at the
    // first failure. Returns 0 or the failing action's code.
    static unsigned runOnChange(const PlixValue& value);
    static unsigned runOnChange(const PlixDataSet& dataSet);

    // Runs every action marked for the start-up pass; results are ignored,
    // since one failing action must not keep the device from the others.
    static void runAtStart(const PlixValue& value);
    static void runAtStart(const PlixDataSet& dataSet);
};
