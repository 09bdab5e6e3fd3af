#include "PlixValueOnChangeSysconfigStationName.h"

#include "PlixLog.h"
#include "PlixSysconfigCaller.h"
#include "PlixValue.h"
#include "sysconfig.h"

PlixValueOnChangeSysconfigStationName::PlixValueOnChangeSysconfigStationName(PlixValue& value)
    : PlixValueOnChangeHandler(value)
{
}

unsigned PlixValueOnChangeSysconfigStationName::onChange()
{
    const std::string stationName = value.getValue().getAsString();
    // The library takes the name by length; no terminating NUL is needed.
    const sysconfig_sysname_t record = {stationName.data(), stationName.size()};
    if (sysconfig_set_sysname(plixSysconfigCaller, &record) == 1) {
        plixLog(LOG_NOTICE,
                "Successfully used PlixValueOnChangeSysconfigStationName to set Station Name: %s",
                stationName.c_str());
        return 0;
    }
    plixLog(LOG_WARNING, "PlixValueOnChangeSysconfigStationName failed with Station Name: %s",
            stationName.c_str());
    return 13;
}
