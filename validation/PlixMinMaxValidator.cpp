#include "PlixMinMaxValidator.h"

#include "PlixLog.h"
#include "PlixValue.h"

PlixMinMaxValidator::PlixMinMaxValidator(PlixValue& value) : PlixValueValidator(value)
{
}

unsigned PlixMinMaxValidator::validate()
{
    const int wanted = value.getWantedSetValue().asInt();
    if (min <= wanted && wanted <= max) {
        return 0;
    }
    plixLog(LOG_WARNING, "Validation failed: value for %s not beetween %d and %d!",
            value.getName().c_str(), min, max);
    return 200;
}
