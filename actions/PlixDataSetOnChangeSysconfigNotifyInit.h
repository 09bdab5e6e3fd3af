#pragma once

#include "PlixDatasetOnChangeHandler.h"

// Sends the system-configuration library's notification initialisation when
// the data set changes. Its answer does not matter to the commit.
class PlixDataSetOnChangeSysconfigNotifyInit : public PlixDatasetOnChangeHandler
{
public:
    explicit PlixDataSetOnChangeSysconfigNotifyInit(PlixDataSet& dataSet);

    unsigned onChange() override;
};
