#include "PlixctlBusClient.h"

namespace {
const char* const serviceName = "com.orvanta.plix";
const char* const objectPath = "/plix";
const char* const monitorInterface = "com.orvanta.plix.Monitor";
const char* const adaptorInterface = "com.orvanta.plix.dBusAdaptor";
// A commit may run change actions such as a DHCP client start: be patient.
constexpr int callTimeoutMs = 60000;

const char* transientSetterOf(GVariant* value)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return "SetBoolValueTransient";
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32)) {
        return "SetIntValueTransient";
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_DOUBLE)) {
        return "SetDoubleValueTransient";
    }
    return "SetStringValueTransient";
}
} // namespace

PlixctlBusClient::~PlixctlBusClient()
{
    if (mSubscription != 0) {
        g_dbus_connection_signal_unsubscribe(mConnection, mSubscription);
    }
    if (mConnection != nullptr) {
        g_object_unref(mConnection);
    }
}

bool PlixctlBusClient::connect(const std::string& address)
{
    GError* error = nullptr;
    if (address.empty()) {
        mConnection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error);
    } else {
        const auto flags =
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        mConnection = g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr,
                                                             nullptr, &error);
    }
    if (mConnection == nullptr) {
        mError = error->message;
        g_error_free(error);
        return false;
    }
    // A lost bus is reported like any other bus failure, not by ending the
    // process from inside GIO.
    g_dbus_connection_set_exit_on_close(mConnection, FALSE);
    return true;
}

PlixctlVariant PlixctlBusClient::call(const char* interface, const char* method, GVariant* params,
                                      const char* replyType)
{
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        mConnection, serviceName, objectPath, interface, method, params, G_VARIANT_TYPE(replyType),
        G_DBUS_CALL_FLAGS_NONE, callTimeoutMs, nullptr, &error);
    if (reply == nullptr) {
        mError = error->message;
        g_error_free(error);
    }
    return PlixctlVariant(reply);
}

std::optional<int> PlixctlBusClient::callForCode(const char* method, GVariant* params,
                                                 const char* interface)
{
    const PlixctlVariant reply =
        call(interface != nullptr ? interface : adaptorInterface, method, params, "(i)");
    if (!reply) {
        return std::nullopt;
    }
    gint32 code = 0;
    g_variant_get(reply.get(), "(i)", &code);
    return code;
}

std::optional<std::vector<PlixctlValueInfo>> PlixctlBusClient::listValues()
{
    const PlixctlVariant reply = call(monitorInterface, "ListValues", nullptr, "(a(sssb))");
    if (!reply) {
        return std::nullopt;
    }
    std::vector<PlixctlValueInfo> values;
    GVariantIter* iter = nullptr;
    g_variant_get(reply.get(), "(a(sssb))", &iter);
    const gchar* id = nullptr;
    const gchar* type = nullptr;
    const gchar* file = nullptr;
    gboolean readOnly = FALSE;
    while (g_variant_iter_next(iter, "(&s&s&sb)", &id, &type, &file, &readOnly)) {
        values.push_back({id, type, file, readOnly != FALSE});
    }
    g_variant_iter_free(iter);
    return values;
}

std::optional<std::pair<int, PlixctlVariant>>
PlixctlBusClient::getValues(const std::vector<std::string>& ids)
{
    GVariantBuilder request;
    g_variant_builder_init(&request, G_VARIANT_TYPE_STRING_ARRAY);
    for (const std::string& id : ids) {
        g_variant_builder_add(&request, "s", id.c_str());
    }
    const PlixctlVariant reply =
        call(monitorInterface, "GetValues", g_variant_new("(as)", &request), "(ia{sv})");
    if (!reply) {
        return std::nullopt;
    }
    gint32 code = 0;
    GVariant* values = nullptr;
    g_variant_get(reply.get(), "(i@a{sv})", &code, &values);
    return std::make_pair(static_cast<int>(code), PlixctlVariant(values));
}

std::optional<PlixctlResult> PlixctlBusClient::apply(GVariant* changes, bool persistent)
{
    const PlixctlVariant reply =
        call(monitorInterface, "Apply", g_variant_new("(@a{sv}b)", changes, persistent), "(is)");
    if (!reply) {
        return std::nullopt;
    }
    gint32 code = 0;
    const gchar* failedId = nullptr;
    g_variant_get(reply.get(), "(i&s)", &code, &failedId);
    return PlixctlResult{code, failedId};
}

std::optional<PlixctlResult> PlixctlBusClient::applyConfirmed(GVariant* changes, unsigned seconds,
                                                              std::string& token)
{
    const PlixctlVariant reply = call(monitorInterface, "ApplyConfirmed",
                                      g_variant_new("(@a{sv}u)", changes, seconds), "(iss)");
    if (!reply) {
        return std::nullopt;
    }
    gint32 code = 0;
    const gchar* failedId = nullptr;
    const gchar* given = nullptr;
    g_variant_get(reply.get(), "(i&s&s)", &code, &failedId, &given);
    token = given;
    return PlixctlResult{code, failedId};
}

std::optional<int> PlixctlBusClient::confirm(const std::string& token)
{
    return callForCode("Confirm", g_variant_new("(s)", token.c_str()), monitorInterface);
}

std::optional<int> PlixctlBusClient::cancel(const std::string& token)
{
    return callForCode("Cancel", g_variant_new("(s)", token.c_str()), monitorInterface);
}

std::optional<PlixctlPending> PlixctlBusClient::pending()
{
    const PlixctlVariant reply = call(monitorInterface, "Pending", nullptr, "(buas)");
    if (!reply) {
        return std::nullopt;
    }
    PlixctlPending state{false, 0, {}};
    gboolean pending = FALSE;
    guint32 secondsLeft = 0;
    GVariantIter* iter = nullptr;
    g_variant_get(reply.get(), "(buas)", &pending, &secondsLeft, &iter);
    const gchar* id = nullptr;
    while (g_variant_iter_next(iter, "&s", &id)) {
        state.ids.emplace_back(id);
    }
    g_variant_iter_free(iter);
    state.pending = pending != FALSE;
    state.secondsLeft = secondsLeft;
    return state;
}

std::optional<int> PlixctlBusClient::setTransient(const std::string& id, GVariant* value)
{
    const char* method = transientSetterOf(value);
    return callForCode(method, g_variant_new("(s@*)", id.c_str(), value));
}

std::optional<int> PlixctlBusClient::transactionStart(bool persistent)
{
    return callForCode("Transactionstart", g_variant_new("(b)", persistent));
}

std::optional<int> PlixctlBusClient::verify(GVariant* value, const std::string& id)
{
    return callForCode("Verify", g_variant_new("(vs)", value, id.c_str()));
}

std::optional<int> PlixctlBusClient::transactionStop()
{
    return callForCode("Transactionstop", nullptr);
}

std::optional<std::vector<PlixctlStoreFailure>> PlixctlBusClient::storeStatus()
{
    const PlixctlVariant reply = call(monitorInterface, "StoreStatus", nullptr, "(ba(ss))");
    if (!reply) {
        return std::nullopt;
    }
    std::vector<PlixctlStoreFailure> failing;
    gboolean allWritten = FALSE;
    GVariantIter* iter = nullptr;
    g_variant_get(reply.get(), "(ba(ss))", &allWritten, &iter);
    const gchar* file = nullptr;
    const gchar* error = nullptr;
    while (g_variant_iter_next(iter, "(&s&s)", &file, &error)) {
        failing.push_back({file, error});
    }
    g_variant_iter_free(iter);
    return failing;
}

void PlixctlBusClient::subscribeValuesChanged(ChangeHandler handler)
{
    mChangeHandler = std::move(handler);
    mSubscription = g_dbus_connection_signal_subscribe(
        mConnection, serviceName, monitorInterface, "ValuesChanged", objectPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, onValuesChanged, this, nullptr);
}

void PlixctlBusClient::onValuesChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                       const gchar*, GVariant* parameters, gpointer self)
{
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(asb)"))) {
        return;
    }
    std::vector<std::string> ids;
    GVariantIter* iter = nullptr;
    gboolean persistent = FALSE;
    g_variant_get(parameters, "(asb)", &iter, &persistent);
    const gchar* id = nullptr;
    while (g_variant_iter_next(iter, "&s", &id)) {
        ids.emplace_back(id);
    }
    g_variant_iter_free(iter);
    static_cast<PlixctlBusClient*>(self)->mChangeHandler(ids, persistent != FALSE);
}
