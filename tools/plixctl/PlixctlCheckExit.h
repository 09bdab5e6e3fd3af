#pragma once

// Thrown in place of the end of the process while a configuration is
// checked: code of the service that would end it (a data-set validator that
// misses a member) is then reported instead.
struct PlixctlCheckExit
{
    int status;
};
