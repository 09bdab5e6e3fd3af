#include "PlixValueOnChangeWriteToFile.h"

#include "PlixLog.h"
#include "PlixValue.h"

#include <fstream>

PlixValueOnChangeWriteToFile::PlixValueOnChangeWriteToFile(PlixValue& value)
    : PlixValueOnChangeHandler(value)
{
}

unsigned PlixValueOnChangeWriteToFile::onChange()
{
    plixLog(LOG_NOTICE, "ValueOnChangeWriteToFile: writing value of %s into file %s",
            value.getName().c_str(), pathToFile.c_str());
    std::ofstream file(pathToFile, std::ios::binary | std::ios::trunc);
    if (!file.is_open()) {
        return 10;
    }
    const PlixVariant wanted = value.getWantedSetValue();
    // Readers of these files expect a bool as a digit. Doubles and passwords
    // have no file form: the file is left empty.
    switch (value.getValue().getDataType()) {
    case PlixVariant::BOOL:
        file << (wanted.asBool() ? "1" : "0");
        break;
    case PlixVariant::INT:
        file << wanted.asInt();
        break;
    case PlixVariant::STRING:
        file << wanted.asString();
        break;
    default:
        break;
    }
    return 0;
}
