#pragma once

#include <string>

// Programs and files the integration tests use; the build fills in the
// macros (see CMakeLists.txt).
#ifndef PLIX_SERVICE_BINARY
#error "PLIX_SERVICE_BINARY must be defined by the build"
#endif

// The machine's lock directory with symbolic links resolved (often
// /run/lock): a bind mount needs the real path.
std::string plixRealLockDirectory();
