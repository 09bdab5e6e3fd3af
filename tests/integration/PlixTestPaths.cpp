#include "PlixTestPaths.h"

#include <climits>
#include <cstdlib>

std::string plixRealLockDirectory()
{
    char real[PATH_MAX];
    if (realpath("/var/lock", real) == nullptr) {
        return "/var/lock";
    }
    return real;
}
