#include "PlixConfigTestDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

PlixConfigTestDir::PlixConfigTestDir()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "plixconfig-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    directory = pattern;
}

PlixConfigTestDir::~PlixConfigTestDir()
{
    std::error_code ignored;
    std::filesystem::permissions(directory, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(directory, ignored);
}

std::string PlixConfigTestDir::write(const std::string& name, const std::string& content) const
{
    std::ofstream file(path(name), std::ios::binary | std::ios::trunc);
    file << content;
    return path(name);
}

std::string PlixConfigTestDir::read(const std::string& name) const
{
    std::ifstream file(path(name), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

bool PlixConfigTestDir::exists(const std::string& name) const
{
    return std::filesystem::exists(path(name));
}
