#include "PlixMonitorCalls.h"

#include <gtest/gtest.h>

PlixGVariantPtr PlixMonitorCalls::call(const std::string& method, GVariant* params) const
{
    std::string error;
    PlixGVariantPtr reply = mClient.call(PlixBusClient::kServiceName, PlixBusClient::kAdaptorPath,
                                         kInterface, method, params, &error);
    EXPECT_TRUE(reply) << method << ": " << error;
    return reply;
}

std::vector<PlixMonitorCalls::Listed> PlixMonitorCalls::listValues() const
{
    std::vector<Listed> listed;
    const PlixGVariantPtr reply = call("ListValues", nullptr);
    if (!reply) {
        return listed;
    }
    GVariantIter* iter = nullptr;
    g_variant_get(reply.get(), "(a(sssb))", &iter);
    const gchar* id = nullptr;
    const gchar* type = nullptr;
    const gchar* file = nullptr;
    gboolean readOnly = FALSE;
    while (g_variant_iter_next(iter, "(&s&s&sb)", &id, &type, &file, &readOnly)) {
        listed.push_back({id, type, file, readOnly != FALSE});
    }
    g_variant_iter_free(iter);
    return listed;
}

PlixMonitorCalls::Read PlixMonitorCalls::getValues(const std::vector<std::string>& ids) const
{
    GVariantBuilder request;
    g_variant_builder_init(&request, G_VARIANT_TYPE_STRING_ARRAY);
    for (const std::string& id : ids) {
        g_variant_builder_add(&request, "s", id.c_str());
    }
    Read read{-1, {}};
    const PlixGVariantPtr reply = call("GetValues", g_variant_new("(as)", &request));
    if (!reply) {
        return read;
    }
    GVariantIter* iter = nullptr;
    g_variant_get(reply.get(), "(ia{sv})", &read.status, &iter);
    const gchar* id = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(iter, "{&sv}", &id, &value)) {
        gchar* text = g_variant_print(value, FALSE);
        read.values.emplace_back(id, text);
        g_free(text);
        g_variant_unref(value);
    }
    g_variant_iter_free(iter);
    return read;
}

PlixMonitorCalls::Applied PlixMonitorCalls::apply(const std::vector<Change>& changes,
                                                  bool persistent) const
{
    Applied applied{-1, ""};
    const PlixGVariantPtr reply =
        call("Apply", g_variant_new("(@a{sv}b)", changesOf(changes), persistent));
    if (!reply) {
        return applied;
    }
    const gchar* failedId = nullptr;
    g_variant_get(reply.get(), "(i&s)", &applied.status, &failedId);
    applied.failedId = failedId;
    return applied;
}

PlixMonitorCalls::Stored PlixMonitorCalls::storeStatus() const
{
    Stored stored{false, {}};
    const PlixGVariantPtr reply = call("StoreStatus", nullptr);
    if (!reply) {
        return stored;
    }
    gboolean allWritten = FALSE;
    GVariantIter* iter = nullptr;
    g_variant_get(reply.get(), "(ba(ss))", &allWritten, &iter);
    stored.allWritten = allWritten != FALSE;
    const gchar* file = nullptr;
    const gchar* error = nullptr;
    while (g_variant_iter_next(iter, "(&s&s)", &file, &error)) {
        stored.failing.emplace_back(file, error);
    }
    g_variant_iter_free(iter);
    return stored;
}

GVariant* PlixMonitorCalls::changesOf(const std::vector<Change>& changes)
{
    GVariantBuilder dict;
    g_variant_builder_init(&dict, G_VARIANT_TYPE("a{sv}"));
    for (const auto& change : changes) {
        g_variant_builder_add(&dict, "{sv}", change.first.c_str(), change.second);
    }
    return g_variant_builder_end(&dict);
}

PlixMonitorCalls::AppliedConfirmed
PlixMonitorCalls::applyConfirmed(const std::vector<Change>& changes, unsigned seconds) const
{
    AppliedConfirmed applied{-1, "", ""};
    const PlixGVariantPtr reply =
        call("ApplyConfirmed", g_variant_new("(@a{sv}u)", changesOf(changes), seconds));
    if (!reply) {
        return applied;
    }
    const gchar* failedId = nullptr;
    const gchar* token = nullptr;
    g_variant_get(reply.get(), "(i&s&s)", &applied.status, &failedId, &token);
    applied.failedId = failedId;
    applied.token = token;
    return applied;
}

int PlixMonitorCalls::callWithToken(const std::string& method, const std::string& token) const
{
    int status = -1;
    const PlixGVariantPtr reply = call(method, g_variant_new("(s)", token.c_str()));
    if (reply) {
        g_variant_get(reply.get(), "(i)", &status);
    }
    return status;
}

int PlixMonitorCalls::confirm(const std::string& token) const
{
    return callWithToken("Confirm", token);
}

int PlixMonitorCalls::cancel(const std::string& token) const
{
    return callWithToken("Cancel", token);
}

PlixMonitorCalls::Waiting PlixMonitorCalls::pending() const
{
    Waiting waiting{false, 0, {}};
    const PlixGVariantPtr reply = call("Pending", nullptr);
    if (!reply) {
        return waiting;
    }
    gboolean pending = FALSE;
    const gchar** ids = nullptr;
    g_variant_get(reply.get(), "(bu^a&s)", &pending, &waiting.secondsLeft, &ids);
    waiting.pending = pending != FALSE;
    for (std::size_t i = 0; ids[i] != nullptr; ++i) {
        waiting.ids.emplace_back(ids[i]);
    }
    g_free(ids);
    return waiting;
}
