#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

// A fresh directory under the system's temporary directory, removed with
// everything in it when the test ends.
class PlixTestDirectory
{
public:
    PlixTestDirectory()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "plix-actions-XXXXXX").string();
        if (mkdtemp(&pattern[0]) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
        directory = pattern;
    }
    ~PlixTestDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    PlixTestDirectory(const PlixTestDirectory&) = delete;
    PlixTestDirectory& operator=(const PlixTestDirectory&) = delete;

    const std::string& path() const { return directory; }
    std::string file(const std::string& name) const { return directory + "/" + name; }
    bool exists(const std::string& name) const { return std::filesystem::exists(file(name)); }

    // The bytes of a file in the directory; empty when it does not exist.
    std::string read(const std::string& name) const
    {
        std::ifstream in(file(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    void write(const std::string& name, const std::string& content) const
    {
        std::ofstream(file(name), std::ios::binary) << content;
    }

private:
    std::string directory;
};
