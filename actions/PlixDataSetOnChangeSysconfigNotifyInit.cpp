#include "PlixDataSetOnChangeSysconfigNotifyInit.h"

#include "sysconfig.h"

PlixDataSetOnChangeSysconfigNotifyInit::PlixDataSetOnChangeSysconfigNotifyInit(PlixDataSet& dataSet)
    : PlixDatasetOnChangeHandler(dataSet)
{
}

unsigned PlixDataSetOnChangeSysconfigNotifyInit::onChange()
{
    sysconfig_clint_notify_init();
    return 0;
}
