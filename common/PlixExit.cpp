#include "PlixExit.h"

#include <cstdio>
#include <cstdlib>

namespace {
PlixExitHandler exitHandler = nullptr;
}

void plixSetExitHandler(PlixExitHandler handler)
{
    exitHandler = handler;
}

void plixExit(int status)
{
    std::fflush(stdout);
    if (exitHandler != nullptr) {
        exitHandler(status);
    }
    std::exit(status);
}
