#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

struct PlixGVariantUnref
{
    void operator()(GVariant* v) const { g_variant_unref(v); }
};
using PlixGVariantPtr = std::unique_ptr<GVariant, PlixGVariantUnref>;

// A reply of a getter: the status code and the value, whatever order the
// method puts them in on the wire.
template <typename T>
struct PlixGetReply
{
    int status;
    T value;
};

// One client of the service: its own connection to the private bus, and so
// its own unique name, which the service takes as the client's identity.
class PlixBusClient
{
public:
    static constexpr const char* kServiceName = "com.orvanta.plix";
    static constexpr const char* kAdaptorPath = "/plix";
    static constexpr const char* kAdaptorInterface = "com.orvanta.plix.dBusAdaptor";
    static constexpr const char* kControlPath = "/ctrl";
    static constexpr const char* kControlInterface = "com.orvanta.dbus";
    static constexpr int kCallTimeoutMs = 10000;

    explicit PlixBusClient(const std::string& address);
    ~PlixBusClient();
    PlixBusClient(const PlixBusClient&) = delete;
    PlixBusClient& operator=(const PlixBusClient&) = delete;

    GDBusConnection* connection() const { return mConnection; }
    std::string uniqueName() const;

    // Any call; params is consumed (floating). Returns the reply, or null with
    // the D-Bus error's name and message in *error.
    PlixGVariantPtr call(const std::string& destination, const std::string& path,
                         const std::string& interface, const std::string& method, GVariant* params,
                         std::string* error = nullptr) const;
    // A call of the configuration interface at /plix.
    PlixGVariantPtr callAdaptor(const std::string& method, GVariant* params,
                                std::string* error = nullptr) const;

    int transactionStart(bool persistent) const;
    int transactionStop() const;

    int setBool(const std::string& id, bool value) const;
    int setInt(const std::string& id, int value) const;
    int setDouble(const std::string& id, double value) const;
    int setString(const std::string& id, const std::string& value) const;
    int setBoolTransient(const std::string& id, bool value) const;
    int setIntTransient(const std::string& id, int value) const;
    int setDoubleTransient(const std::string& id, double value) const;
    int setStringTransient(const std::string& id, const std::string& value) const;

    PlixGetReply<bool> getBool(const std::string& id) const;
    PlixGetReply<int> getInt(const std::string& id) const;
    PlixGetReply<double> getDouble(const std::string& id) const;
    PlixGetReply<std::string> getString(const std::string& id) const;
    PlixGetReply<bool> getBoolTransient(const std::string& id) const;
    PlixGetReply<int> getIntTransient(const std::string& id) const;
    PlixGetReply<double> getDoubleTransient(const std::string& id) const;
    PlixGetReply<std::string> getStringTransient(const std::string& id) const;

    // value is the inner value of the variant argument (consumed if floating).
    int verify(GVariant* value, const std::string& id) const;

    std::string introspect(const std::string& path) const;

    // Asks the bus for a well-known name with replace-existing, as a rival
    // owner would; returns the bus's answer (kPrimaryOwner when it took the
    // name), or 0 when none came.
    static constexpr guint32 kPrimaryOwner = 1;
    guint32 requestNameReplacing(const std::string& name) const;

private:
    int statusOf(const std::string& method, GVariant* params) const;
    template <typename T>
    PlixGetReply<T> get(const std::string& method, const std::string& id, bool statusFirst) const;

    GDBusConnection* mConnection = nullptr;
};
