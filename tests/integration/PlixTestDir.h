#pragma once

#include <string>
#include <vector>

// A fresh directory under /tmp that holds everything one test writes: the
// configuration, the JSON store, the bus socket, the lock directory and the
// captured output. It is removed at the end unless the test asked to keep it.
class PlixTestDir
{
public:
    PlixTestDir();
    ~PlixTestDir();
    PlixTestDir(const PlixTestDir&) = delete;
    PlixTestDir& operator=(const PlixTestDir&) = delete;

    const std::string& path() const { return mPath; }
    std::string file(const std::string& name) const;

    std::string write(const std::string& name, const std::string& text) const;
    std::string writeExecutable(const std::string& name, const std::string& text) const;
    std::string makeDirectory(const std::string& name) const;
    bool exists(const std::string& name) const;

    // Keeps the directory after the test so a failure can be looked into.
    void keep() { mKeep = true; }

    static std::string readFile(const std::string& path);
    static std::vector<std::string> splitLines(const std::string& text);

private:
    std::string mPath;
    bool mKeep = false;
};
