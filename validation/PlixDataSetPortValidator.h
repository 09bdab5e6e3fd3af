#pragma once

#include "PlixDatasetValidator.h"

// The main port and the HTTP port cannot be the same port.
class PlixDataSetPortValidator : public PlixDatasetValidator
{
public:
    explicit PlixDataSetPortValidator(PlixDataSet& dataSet);

    unsigned validate() override;
};
