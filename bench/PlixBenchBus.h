#pragma once

#include <gio/gio.h>

#include <string>
#include <vector>

// One call at /plix: method name, its arguments (a floating GVariant tuple,
// or nullptr for none) and its interface, the configuration interface
// unless named.
struct PlixBenchCall
{
    static constexpr const char* adaptor = "com.orvanta.plix.dBusAdaptor";
    static constexpr const char* monitor = "com.orvanta.plix.Monitor";

    const char* method;
    GVariant* arguments;
    const char* interface = adaptor;
};

// A private client connection to the system bus (DBUS_SYSTEM_BUS_ADDRESS)
// that calls the configuration or the monitor interface at /plix of a given
// name and hands back the status code of each reply. A bus error is reported on standard
// error and given as the status -1.
class PlixBenchBus
{
public:
    static constexpr int busError = -1;

    PlixBenchBus();
    ~PlixBenchBus();
    PlixBenchBus(const PlixBenchBus&) = delete;
    PlixBenchBus& operator=(const PlixBenchBus&) = delete;

    bool connected() const { return connection != nullptr; }
    int call(const std::string& destination, const PlixBenchCall& call);
    bool ping(const std::string& destination);
    // Sends every call before the first reply is awaited; the statuses in
    // call order.
    std::vector<int> pipeline(const std::string& destination,
                              const std::vector<PlixBenchCall>& calls);
    // A call that waits for the name to get an owner: false while no one
    // owns it, true once a reply came (status 0 or not).
    bool callWhenOwned(const std::string& destination, const PlixBenchCall& call, int& status);

    static int statusOf(const PlixBenchCall& call, GVariant* reply);

private:
    GDBusConnection* connection = nullptr;
};
