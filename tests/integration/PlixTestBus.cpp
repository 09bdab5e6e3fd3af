#include "PlixTestBus.h"

#include "PlixWait.h"

#include <signal.h>

#include <stdexcept>

namespace {
const char* const kBusName = "org.freedesktop.DBus";
const char* const kBusPath = "/org/freedesktop/DBus";
} // namespace

PlixTestBus::PlixTestBus(const PlixTestDir& dir, const std::string& configFile)
    : mAddress("unix:path=" + dir.file("bus.socket"))
{
    const std::string printed = dir.file("bus.address");
    mDaemon = std::make_unique<PlixChildProcess>(
        std::vector<std::string>{"/usr/bin/dbus-daemon", "--config-file=" + configFile,
                                 "--address=" + mAddress, "--nofork", "--print-address=1"},
        std::map<std::string, std::string>{}, printed, dir.file("bus.log"));
    // The daemon prints its address once it listens: that is its readiness.
    const bool listening = plixWaitUntil(
        [&] {
            return PlixTestDir::readFile(printed).find('\n') != std::string::npos ||
                   !mDaemon->running();
        },
        std::chrono::seconds(10));
    if (!listening || !mDaemon->running()) {
        throw std::runtime_error("private dbus-daemon did not come up: " +
                                 PlixTestDir::readFile(dir.file("bus.log")));
    }
    mAdmin = std::make_unique<PlixBusClient>(mAddress);
}

PlixTestBus::~PlixTestBus()
{
    mAdmin.reset();
    mDaemon->sendSignal(SIGTERM);
    mDaemon->waitExit(std::chrono::seconds(5));
}

std::string PlixTestBus::nameOwner(const std::string& name) const
{
    PlixGVariantPtr reply = mAdmin->call(kBusName, kBusPath, kBusName, "GetNameOwner",
                                         g_variant_new("(s)", name.c_str()));
    if (!reply) {
        return "";
    }
    const gchar* owner = nullptr;
    g_variant_get(reply.get(), "(&s)", &owner);
    return owner;
}

pid_t PlixTestBus::processIdOf(const std::string& uniqueName) const
{
    PlixGVariantPtr reply = mAdmin->call(kBusName, kBusPath, kBusName, "GetConnectionUnixProcessID",
                                         g_variant_new("(s)", uniqueName.c_str()));
    if (!reply) {
        return -1;
    }
    guint32 pid = 0;
    g_variant_get(reply.get(), "(u)", &pid);
    return static_cast<pid_t>(pid);
}
