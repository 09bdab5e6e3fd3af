#pragma once

#include "PlixDatasetValidator.h"

// Of the three ways to treat a second connection, exactly one must be chosen.
class PlixConnectionpriorityValidator : public PlixDatasetValidator
{
public:
    explicit PlixConnectionpriorityValidator(PlixDataSet& dataSet);

    unsigned validate() override;
};
