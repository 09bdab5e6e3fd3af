#include "PlixDataSetNetworkValidator.h"

PlixDataSetNetworkValidator::PlixDataSetNetworkValidator(PlixDataSet& dataSet)
    : PlixDatasetValidator(dataSet)
{
}

unsigned PlixDataSetNetworkValidator::validate()
{
    return 0;
}
