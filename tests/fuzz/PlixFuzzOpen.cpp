// Linked into the XML loader's fuzz target with --wrap=open and
// --wrap=openat: while a load runs, every file that it opens is opened in the
// working directory under the last part of its path. A store path in the
// fuzzed text, absolute or climbing out with "..", thus never reaches another
// file of the machine, and the loader's handling of any path is still run.
#include "PlixFuzzOpen.h"

#include <fcntl.h>

#include <cstdarg>
#include <string>

extern "C" int __real_open(const char* path, int flags, ...);
extern "C" int __real_openat(int directory, const char* path, int flags, ...);

namespace {
bool confined = false;

std::string inWorkingDirectory(const char* path)
{
    const std::string text = path;
    if (!confined) {
        return text;
    }
    const std::string last = text.substr(text.find_last_of('/') + 1);
    return last.empty() || last == ".." ? "." : last;
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}
} // namespace

extern "C" int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return __real_open(inWorkingDirectory(path).c_str(), flags, mode);
}

extern "C" int __wrap_openat(int directory, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return __real_openat(confined ? AT_FDCWD : directory, inWorkingDirectory(path).c_str(), flags,
                         mode);
}

PlixFuzzOpenConfined::PlixFuzzOpenConfined()
{
    confined = true;
}

PlixFuzzOpenConfined::~PlixFuzzOpenConfined()
{
    confined = false;
}
