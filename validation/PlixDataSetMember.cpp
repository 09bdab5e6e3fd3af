#include "PlixDataSetMember.h"

#include "PlixDataSet.h"
#include "PlixExit.h"
#include "PlixLog.h"

#include <stdexcept>

PlixVariant PlixDataSetMember::readOrExit(const PlixDataSet& dataSet, const std::string& name,
                                          const char* failureFormat)
{
    try {
        return dataSet.getAsVariant(name);
    } catch (const std::out_of_range& e) {
        plixLog(LOG_ERR, failureFormat, e.what());
        plixExit(16);
    }
}
