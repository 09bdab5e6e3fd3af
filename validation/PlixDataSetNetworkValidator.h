#pragma once

#include "PlixDatasetValidator.h"

// Names the network data set in the configuration. The set is accepted as a
// whole; the device judges the addresses when they are applied.
class PlixDataSetNetworkValidator : public PlixDatasetValidator
{
public:
    explicit PlixDataSetNetworkValidator(PlixDataSet& dataSet);

    unsigned validate() override;
};
