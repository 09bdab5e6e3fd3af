#pragma once

class PlixDataSet;

// Judges the members of one data set together at commit; 0 means valid.
class PlixDatasetValidator
{
public:
    explicit PlixDatasetValidator(PlixDataSet& dataSet) : dataSet(dataSet) {}
    virtual ~PlixDatasetValidator() = default;
    virtual unsigned validate() = 0;

protected:
    PlixDataSet& dataSet;
};
