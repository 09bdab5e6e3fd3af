#include "PlixTestDir.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {
int removeEntry(const char* path, const struct stat*, int, struct FTW*)
{
    ::remove(path);
    return 0;
}
} // namespace

PlixTestDir::PlixTestDir()
{
    char name[] = "/tmp/plix-it-XXXXXX";
    if (mkdtemp(name) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    mPath = name;
}

PlixTestDir::~PlixTestDir()
{
    if (mKeep) {
        std::fprintf(stderr, "kept test directory %s\n", mPath.c_str());
        return;
    }
    // FTW_MOUNT: never follow into a mount that might still sit inside.
    nftw(mPath.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
}

std::string PlixTestDir::file(const std::string& name) const
{
    return mPath + "/" + name;
}

std::string PlixTestDir::write(const std::string& name, const std::string& text) const
{
    const std::string path = file(name);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    if (!out) {
        throw std::runtime_error("cannot write " + path);
    }
    return path;
}

std::string PlixTestDir::writeExecutable(const std::string& name, const std::string& text) const
{
    const std::string path = write(name, text);
    chmod(path.c_str(), 0755);
    return path;
}

std::string PlixTestDir::makeDirectory(const std::string& name) const
{
    const std::string path = file(name);
    mkdir(path.c_str(), 0755);
    return path;
}

bool PlixTestDir::exists(const std::string& name) const
{
    return access(file(name).c_str(), F_OK) == 0;
}

std::string PlixTestDir::readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::string> PlixTestDir::splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::string::size_type start = 0;
    while (start < text.size()) {
        const auto end = text.find('\n', start);
        if (end == std::string::npos) {
            lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}
