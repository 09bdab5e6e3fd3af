#pragma once

#include <gio/gio.h>

// The desktop settings store's writer (ca.desrt.dconf.Writer.Change at
// /ca/desrt/dconf/Writer/user on the session bus named by
// DBUS_SESSION_BUS_ADDRESS) as a point of comparison for a durable write of
// ten values: each Change carries ten int keys and is answered once the
// store file has been rewritten. Its floor is a Peer.Ping of the same
// process on the same bus.
class PlixBenchDconf
{
public:
    PlixBenchDconf();
    ~PlixBenchDconf();
    PlixBenchDconf(const PlixBenchDconf&) = delete;
    PlixBenchDconf& operator=(const PlixBenchDconf&) = delete;

    // Times count calls of each after a tenth as many of warm-up and prints
    // the row; false (with a message on standard error) when a call fails.
    bool run(int count);

private:
    bool change(int i);
    bool ping();
    bool call(const char* path, const char* interface, const char* method, GVariant* arguments);

    GDBusConnection* connection = nullptr;
};
