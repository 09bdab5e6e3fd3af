#include "PlixBusClient.h"

#include <stdexcept>

namespace {
// How each value type travels on the wire and comes back out of a reply.
template <typename T>
struct PlixWireType;

template <>
struct PlixWireType<bool>
{
    static constexpr const char* code = "b";
    static bool read(GVariant* v) { return g_variant_get_boolean(v) != FALSE; }
};

template <>
struct PlixWireType<int>
{
    static constexpr const char* code = "i";
    static int read(GVariant* v) { return g_variant_get_int32(v); }
};

template <>
struct PlixWireType<double>
{
    static constexpr const char* code = "d";
    static double read(GVariant* v) { return g_variant_get_double(v); }
};

template <>
struct PlixWireType<std::string>
{
    static constexpr const char* code = "s";
    static std::string read(GVariant* v) { return g_variant_get_string(v, nullptr); }
};

// Marks a reply that did not arrive: no status the service can send.
constexpr int kNoReply = -1;

GVariant* idAnd(const std::string& id, GVariant* value)
{
    GVariant* items[] = {g_variant_new_string(id.c_str()), value};
    return g_variant_new_tuple(items, 2);
}
} // namespace

PlixBusClient::PlixBusClient(const std::string& address)
{
    GError* error = nullptr;
    mConnection = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    if (mConnection == nullptr) {
        const std::string message = error->message;
        g_error_free(error);
        throw std::runtime_error("cannot connect to " + address + ": " + message);
    }
}

PlixBusClient::~PlixBusClient()
{
    g_dbus_connection_close_sync(mConnection, nullptr, nullptr);
    g_object_unref(mConnection);
}

std::string PlixBusClient::uniqueName() const
{
    return g_dbus_connection_get_unique_name(mConnection);
}

PlixGVariantPtr PlixBusClient::call(const std::string& destination, const std::string& path,
                                    const std::string& interface, const std::string& method,
                                    GVariant* params, std::string* error) const
{
    GError* failure = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        mConnection, destination.c_str(), path.c_str(), interface.c_str(), method.c_str(), params,
        nullptr, G_DBUS_CALL_FLAGS_NONE, kCallTimeoutMs, nullptr, &failure);
    if (reply == nullptr) {
        if (error != nullptr) {
            gchar* remote = g_dbus_error_get_remote_error(failure);
            *error = std::string(remote != nullptr ? remote : "") + ": " + failure->message;
            g_free(remote);
        }
        g_error_free(failure);
    }
    return PlixGVariantPtr(reply);
}

PlixGVariantPtr PlixBusClient::callAdaptor(const std::string& method, GVariant* params,
                                           std::string* error) const
{
    return call(kServiceName, kAdaptorPath, kAdaptorInterface, method, params, error);
}

int PlixBusClient::statusOf(const std::string& method, GVariant* params) const
{
    PlixGVariantPtr reply = callAdaptor(method, params);
    if (!reply || !g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(i)"))) {
        return kNoReply;
    }
    int status = 0;
    g_variant_get(reply.get(), "(i)", &status);
    return status;
}

template <typename T>
PlixGetReply<T> PlixBusClient::get(const std::string& method, const std::string& id,
                                   bool statusFirst) const
{
    PlixGVariantPtr reply = callAdaptor(method, g_variant_new("(s)", id.c_str()));
    const std::string signature = statusFirst ? std::string("(i") + PlixWireType<T>::code + ")"
                                              : std::string("(") + PlixWireType<T>::code + "i)";
    if (!reply || g_variant_get_type_string(reply.get()) != signature) {
        return {kNoReply, T()};
    }
    PlixGVariantPtr status(g_variant_get_child_value(reply.get(), statusFirst ? 0 : 1));
    PlixGVariantPtr value(g_variant_get_child_value(reply.get(), statusFirst ? 1 : 0));
    return {g_variant_get_int32(status.get()), PlixWireType<T>::read(value.get())};
}

int PlixBusClient::transactionStart(bool persistent) const
{
    return statusOf("Transactionstart", g_variant_new("(b)", persistent));
}

int PlixBusClient::transactionStop() const
{
    return statusOf("Transactionstop", nullptr);
}

int PlixBusClient::setBool(const std::string& id, bool value) const
{
    return statusOf("SetBoolValue", idAnd(id, g_variant_new_boolean(value)));
}

int PlixBusClient::setInt(const std::string& id, int value) const
{
    return statusOf("SetIntValue", idAnd(id, g_variant_new_int32(value)));
}

int PlixBusClient::setDouble(const std::string& id, double value) const
{
    return statusOf("SetDoubleValue", idAnd(id, g_variant_new_double(value)));
}

int PlixBusClient::setString(const std::string& id, const std::string& value) const
{
    return statusOf("SetStringValue", idAnd(id, g_variant_new_string(value.c_str())));
}

int PlixBusClient::setBoolTransient(const std::string& id, bool value) const
{
    return statusOf("SetBoolValueTransient", idAnd(id, g_variant_new_boolean(value)));
}

int PlixBusClient::setIntTransient(const std::string& id, int value) const
{
    return statusOf("SetIntValueTransient", idAnd(id, g_variant_new_int32(value)));
}

int PlixBusClient::setDoubleTransient(const std::string& id, double value) const
{
    return statusOf("SetDoubleValueTransient", idAnd(id, g_variant_new_double(value)));
}

int PlixBusClient::setStringTransient(const std::string& id, const std::string& value) const
{
    return statusOf("SetStringValueTransient", idAnd(id, g_variant_new_string(value.c_str())));
}

PlixGetReply<bool> PlixBusClient::getBool(const std::string& id) const
{
    return get<bool>("GetBoolValue", id, false);
}

PlixGetReply<int> PlixBusClient::getInt(const std::string& id) const
{
    return get<int>("GetIntValue", id, false);
}

PlixGetReply<double> PlixBusClient::getDouble(const std::string& id) const
{
    return get<double>("GetDoubleValue", id, false);
}

PlixGetReply<std::string> PlixBusClient::getString(const std::string& id) const
{
    return get<std::string>("GetStringValue", id, false);
}

PlixGetReply<bool> PlixBusClient::getBoolTransient(const std::string& id) const
{
    return get<bool>("GetBoolValueTransient", id, true);
}

PlixGetReply<int> PlixBusClient::getIntTransient(const std::string& id) const
{
    return get<int>("GetIntValueTransient", id, true);
}

PlixGetReply<double> PlixBusClient::getDoubleTransient(const std::string& id) const
{
    return get<double>("GetDoubleValueTransient", id, true);
}

PlixGetReply<std::string> PlixBusClient::getStringTransient(const std::string& id) const
{
    return get<std::string>("GetStringValueTransient", id, true);
}

int PlixBusClient::verify(GVariant* value, const std::string& id) const
{
    GVariant* items[] = {g_variant_new_variant(value), g_variant_new_string(id.c_str())};
    return statusOf("Verify", g_variant_new_tuple(items, 2));
}

std::string PlixBusClient::introspect(const std::string& path) const
{
    PlixGVariantPtr reply =
        call(kServiceName, path, "org.freedesktop.DBus.Introspectable", "Introspect", nullptr);
    if (!reply) {
        return "";
    }
    const gchar* xml = nullptr;
    g_variant_get(reply.get(), "(&s)", &xml);
    return xml;
}

guint32 PlixBusClient::requestNameReplacing(const std::string& name) const
{
    // DBUS_NAME_FLAG_REPLACE_EXISTING
    constexpr guint32 replaceExisting = 2;
    PlixGVariantPtr reply =
        call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
             g_variant_new("(su)", name.c_str(), replaceExisting));
    guint32 answer = 0;
    if (reply) {
        g_variant_get(reply.get(), "(u)", &answer);
    }
    return answer;
}
