#include "PlixShutDown.h"

#include "PlixExit.h"
#include "PlixLog.h"

void plixShutDown(int status)
{
    plixLog(LOG_INFO, "Shutting down plix!");
    plixExit(status);
}
