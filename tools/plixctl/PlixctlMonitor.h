#pragma once

#include "PlixctlBusClient.h"
#include "PlixctlOutput.h"

#include <glib.h>

#include <set>
#include <string>
#include <vector>

// "plixctl monitor": prints every change the service announces with
// ValuesChanged, each XML-ID with its new value read at once (a password as
// "(password)", never read), until SIGINT or SIGTERM or until the bus
// connection is lost.
class PlixctlMonitor
{
public:
    PlixctlMonitor(PlixctlBusClient& client, PlixctlOutput& output);
    ~PlixctlMonitor();
    PlixctlMonitor(const PlixctlMonitor&) = delete;
    PlixctlMonitor& operator=(const PlixctlMonitor&) = delete;

    int run();

private:
    void show(const std::vector<std::string>& ids, bool persistent);
    void stop(int status);
    static gboolean onSignal(gpointer self);
    static void onClosed(GDBusConnection* connection, gboolean remotePeerVanished, GError* error,
                         gpointer self);

    PlixctlBusClient& mClient;
    PlixctlOutput& mOutput;
    GMainLoop* mLoop;
    std::set<std::string> mPasswords;
    int mStatus = 0;
};
