#pragma once

// The one way the service ends the process on a fatal condition (broken
// configuration, missing data-set member, usage error). Routing every such
// exit through here lets a death test or a fuzz target intercept it.
[[noreturn]] void plixExit(int status);

// Replaces what plixExit does; a handler must not return (it may throw or
// jump away). nullptr restores the default, std::exit.
using PlixExitHandler = void (*)(int status);
void plixSetExitHandler(PlixExitHandler handler);
