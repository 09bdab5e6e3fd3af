#pragma once

#include "PlixValueOnChangeHandler.h"

#include <string>

// Writes the value's new content into a file, replacing what was there, for
// programs of the device that read their setting from a file.
class PlixValueOnChangeWriteToFile : public PlixValueOnChangeHandler
{
public:
    explicit PlixValueOnChangeWriteToFile(PlixValue& value);

    void setPathToFile(std::string path) { pathToFile = std::move(path); }
    const std::string& getPathToFile() const { return pathToFile; }

    unsigned onChange() override;

private:
    std::string pathToFile;
};
