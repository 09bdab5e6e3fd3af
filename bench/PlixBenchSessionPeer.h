#pragma once

#include <gio/gio.h>

// One object of another program on the session bus named by
// DBUS_SESSION_BUS_ADDRESS: the desktop settings stores the service is
// compared with are called through it.
class PlixBenchSessionPeer
{
public:
    PlixBenchSessionPeer(const char* name, const char* path);
    ~PlixBenchSessionPeer();
    PlixBenchSessionPeer(const PlixBenchSessionPeer&) = delete;
    PlixBenchSessionPeer& operator=(const PlixBenchSessionPeer&) = delete;

    bool connected() const { return connection != nullptr; }
    // Calls the method with the arguments (a floating tuple, or nullptr) and
    // waits for the reply; false (with a message on standard error) when
    // none came.
    bool call(const char* interface, const char* method, GVariant* arguments);
    // Peer.Ping of the same process: the floor of its calls.
    bool ping();

private:
    const char* name;
    const char* path;
    GDBusConnection* connection = nullptr;
};
