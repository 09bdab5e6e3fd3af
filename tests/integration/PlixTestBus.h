#pragma once

#include "PlixBusClient.h"
#include "PlixChildProcess.h"
#include "PlixTestDir.h"

#include <sys/types.h>

#include <memory>
#include <string>

// A private system bus of one test: a dbus-daemon run from the repository's
// bus configuration, listening on a socket in the test directory, so nothing
// of the machine's own bus is touched.
class PlixTestBus
{
public:
    PlixTestBus(const PlixTestDir& dir, const std::string& configFile);
    ~PlixTestBus();

    const std::string& address() const { return mAddress; }

    // The unique name owning a well-known name, empty when it has none.
    std::string nameOwner(const std::string& name) const;
    // The process id (as this machine sees it) of a connection.
    pid_t processIdOf(const std::string& uniqueName) const;

    const PlixBusClient& admin() const { return *mAdmin; }

private:
    std::string mAddress;
    std::unique_ptr<PlixChildProcess> mDaemon;
    std::unique_ptr<PlixBusClient> mAdmin;
};
