#include "PlixFuzzWorkDir.h"

#include "PlixExit.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {
std::string directory;

void removeDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
}

void throwExit(int status)
{
    throw PlixFuzzExit{status};
}

void writeText(const std::string& name, const std::string& text)
{
    PlixFuzzWorkDir::write(name, text.data(), text.size());
}
} // namespace

void PlixFuzzWorkDir::enter()
{
    char pattern[] = "/tmp/plixfuzz-XXXXXX";
    if (mkdtemp(pattern) == nullptr || chdir(pattern) != 0) {
        std::abort();
    }
    directory = pattern;
    std::atexit(removeDirectory);
    writeText("a.json", R"({"a": {"b": 1, "s": "x", "t": true, "r": 2.5}, "l": [1, "2", null]})");
    writeText("b.json", R"({"s": "17", "p": "0011", "f": "0.5", "o": {}})");
    plixSetExitHandler(throwExit);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) {
        std::abort();
    }
}

std::string PlixFuzzWorkDir::write(const std::string& name, const char* data, std::size_t size)
{
    std::ofstream file(name, std::ios::binary | std::ios::trunc);
    file.write(data, static_cast<std::streamsize>(size));
    return name;
}
