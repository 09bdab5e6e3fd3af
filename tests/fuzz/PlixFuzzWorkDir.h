#pragma once

#include <string>

// What both fuzz targets share: a private working directory with two small
// store files (a.json, b.json), standard output discarded, and every
// plixExit turned into a PlixFuzzExit exception, since the prescribed exits
// of a broken configuration are expected outcomes here.
struct PlixFuzzExit
{
    int status;
};

class PlixFuzzWorkDir
{
public:
    // Creates the directory once and makes it the current directory.
    static void enter();
    // Writes the file in the working directory and returns its name.
    static std::string write(const std::string& name, const char* data, std::size_t size);
};
