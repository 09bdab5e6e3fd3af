#pragma once

#include <string>

// A fresh directory under the system's temporary directory for one test's
// files; removed with everything in it when the test ends.
class PlixConfigTestDir
{
public:
    PlixConfigTestDir();
    ~PlixConfigTestDir();
    PlixConfigTestDir(const PlixConfigTestDir&) = delete;
    PlixConfigTestDir& operator=(const PlixConfigTestDir&) = delete;

    std::string path() const { return directory; }
    std::string path(const std::string& name) const { return directory + "/" + name; }
    // Writes the file and returns its path.
    std::string write(const std::string& name, const std::string& content) const;
    std::string read(const std::string& name) const;
    bool exists(const std::string& name) const;

private:
    std::string directory;
};
