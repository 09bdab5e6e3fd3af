#include "ComOrvantaDBusInterface.h"
#include "DBusInterface.h"
#include "OrvantaDBusHandler.h"
#include "PlixDaemon.h"
#include "PlixLog.h"
#include "PlixMemory.h"
#include "PlixMonitorInterface.h"
#include "PlixPidFile.h"

#include <glib-unix.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <vector>

using com::orvanta::dbus::OrvantaDBusHandler;
using com::orvanta::dbus::OrvantaDBusType;

namespace {
const char* const serviceName = "com.orvanta.plix";

// Only -d is looked at before the bus is set up; all other options belong
// to the engine. The scan runs on a copy because getopt may reorder the
// vector it scans, and the engine must see the caller's vector as given.
void daemonizeIfAsked(int argc, char** argv)
{
    std::vector<char*> copy(argv, argv + argc);
    copy.push_back(nullptr);
    int option = 0;
    while ((option = getopt(argc, copy.data(), "d")) != -1) {
        if (option == 'd') {
            OrvantaDBusType::mSemid = daemonize();
            OrvantaDBusType::mReleaseParent = releaseParent;
        }
    }
    optind = 1;
}

gboolean stopLoop(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_CONTINUE;
}
} // namespace

int main(int argc, char** argv)
{
    plixLineBufferedOutput();
    plixGiveLargeBlocksBack();
    daemonizeIfAsked(argc, argv);

    if (checkPidFile(serviceName) < 0) {
        plixLog(LOG_ERR, "Service already started. Shutting down %s", serviceName);
        if (OrvantaDBusType::mSemid >= 0) {
            shutdown_pid_file_failure(OrvantaDBusType::mSemid);
        }
        return -1;
    }

    OrvantaDBusType::set_configure_options(DBusInterface::getInstance(), argc, argv);
    // Configured after the engine: it then joins the configuration interface
    // on "/plix", so nothing of the start-up that clients see changes.
    OrvantaDBusType::set_configure_options(PlixMonitorInterface::getInstance(), argc, argv);

    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    // A termination request ends the loop, so the name is given up and every
    // line written so far leaves the process.
    g_unix_signal_add(SIGTERM, stopLoop, loop);
    g_unix_signal_add(SIGINT, stopLoop, loop);

    plixLog(LOG_INFO, "Starting DBUS Service %s", serviceName);
    OrvantaDBusHandler handler;
    plixLog(LOG_DEBUG, "Register default Interface com.orvanta.dbus under Path: /ctrl");
    handler.systemBus().registerObject("/ctrl", ComOrvantaDBusInterface::getInstance());
    plixLog(LOG_INFO, "Register Interface: %s under Path: %s", "com.orvanta.plix.dBusAdaptor",
            "/plix");
    handler.systemBus().registerObject("/plix", DBusInterface::getInstance());
    plixLog(LOG_INFO, "Register as DBUS Service %s", serviceName);
    const guint ownerId = handler.systemBus().registerService(serviceName, loop);

    plixLog(LOG_DEBUG, "Init Main loop");
    g_main_loop_run(loop);

    g_bus_unown_name(ownerId);
    g_main_loop_unref(loop);
    std::fflush(stdout);
    return 0;
}
