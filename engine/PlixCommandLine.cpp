#include "PlixCommandLine.h"

#include "PlixLog.h"

#include <unistd.h>

PlixCommandLine::PlixCommandLine(int argc, char** argv)
{
    // 0 rather than 1: the C library then also forgets where it stood inside
    // the last group of options it read ("-sh" stopped at the h), which may
    // lie in a command line that no longer exists, and starts again at the
    // first argument.
    optind = 0;
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
