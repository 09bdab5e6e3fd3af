#include "PlixCommandLine.h"

#include "PlixLog.h"

#include <unistd.h>

PlixCommandLine::PlixCommandLine(int argc, char** argv)
{
    optind = 1;
    int option;
    while (!usage && (option = getopt(argc, argv, "dhsc:")) != -1) {
        switch (option) {
        case 'd':
            break;
        case 's':
            trigger = true;
            break;
        case 'c':
            path = optarg;
            pathSeen = true;
            plixLog(LOG_INFO, "XML Config File Path: %s", path.c_str());
            break;
        default:
            usage = true;
        }
    }
}
