#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct PlixctlVariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using PlixctlVariant = std::unique_ptr<GVariant, PlixctlVariantUnref>;

// One declared value as ListValues describes it.
struct PlixctlValueInfo
{
    std::string id;
    std::string type;
    std::string file;
    bool readOnly;
};

// A store file whose latest write failed, as StoreStatus lists it.
struct PlixctlStoreFailure
{
    std::string file;
    std::string error;
};

// A status code with the XML-ID that the service names, if any.
struct PlixctlResult
{
    int code;
    std::string id;
};

// What Pending answers: whether a change awaits its confirmation, the
// seconds left and the XML-IDs it covers.
struct PlixctlPending
{
    bool pending;
    unsigned secondsLeft;
    std::vector<std::string> ids;
};

// plixctl's one connection to the service "com.orvanta.plix" at "/plix": the
// monitor interface and the configuration interface. Every call answers an
// empty optional when the bus did not deliver an answer; error() then says
// why.
class PlixctlBusClient
{
public:
    PlixctlBusClient() = default;
    ~PlixctlBusClient();
    PlixctlBusClient(const PlixctlBusClient&) = delete;
    PlixctlBusClient& operator=(const PlixctlBusClient&) = delete;

    // An empty address means the system bus.
    bool connect(const std::string& address);
    const std::string& error() const { return mError; }
    GDBusConnection* connection() const { return mConnection; }

    std::optional<std::vector<PlixctlValueInfo>> listValues();
    // The code and, on 0, the values as an a{sv} in the order asked for.
    std::optional<std::pair<int, PlixctlVariant>> getValues(const std::vector<std::string>& ids);
    // changes: an a{sv} (consumed if floating).
    std::optional<PlixctlResult> apply(GVariant* changes, bool persistent);
    // The same, kept only if confirmed within seconds; token is the one
    // that confirms or cancels it (empty on failure).
    std::optional<PlixctlResult> applyConfirmed(GVariant* changes, unsigned seconds,
                                                std::string& token);
    std::optional<int> confirm(const std::string& token);
    std::optional<int> cancel(const std::string& token);
    std::optional<PlixctlPending> pending();
    // The transient setter of the variant's type (consumed if floating).
    std::optional<int> setTransient(const std::string& id, GVariant* value);
    std::optional<int> transactionStart(bool persistent);
    std::optional<int> verify(GVariant* value, const std::string& id);
    std::optional<int> transactionStop();
    // The store files whose latest write failed; empty when all are written.
    std::optional<std::vector<PlixctlStoreFailure>> storeStatus();

    using ChangeHandler = std::function<void(const std::vector<std::string>& ids, bool persistent)>;
    // Calls the handler for each ValuesChanged signal of the service, from
    // the default main context.
    void subscribeValuesChanged(ChangeHandler handler);

private:
    PlixctlVariant call(const char* interface, const char* method, GVariant* params,
                        const char* replyType);
    std::optional<int> callForCode(const char* method, GVariant* params,
                                   const char* interface = nullptr);
    static void onValuesChanged(GDBusConnection* connection, const gchar* sender, const gchar* path,
                                const gchar* interface, const gchar* signal, GVariant* parameters,
                                gpointer self);

    GDBusConnection* mConnection = nullptr;
    std::string mError;
    ChangeHandler mChangeHandler;
    guint mSubscription = 0;
};
