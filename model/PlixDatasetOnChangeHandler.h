#pragma once

#include "PlixTriggerFlags.h"

class PlixDataSet;

// A side effect run when values of one data set were committed; 0 means done.
class PlixDatasetOnChangeHandler : public PlixTriggerFlags
{
public:
    explicit PlixDatasetOnChangeHandler(PlixDataSet& dataSet) : dataSet(dataSet) {}
    virtual ~PlixDatasetOnChangeHandler() = default;
    virtual unsigned onChange() = 0;

protected:
    PlixDataSet& dataSet;
};
