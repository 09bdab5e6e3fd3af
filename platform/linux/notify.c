/* sysconfig_clint_notify_init of the Linux backend: a standard system has
 * no control panel to notify, so there is nothing to initialise. */
#include "sysconfig_linux.h"

int sysconfig_clint_notify_init(void)
{
    return 0;
}
