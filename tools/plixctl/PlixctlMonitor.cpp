#include "PlixctlMonitor.h"

#include "PlixctlStatus.h"
#include "PlixctlValueText.h"

#include <glib-unix.h>

#include <csignal>
#include <iostream>

PlixctlMonitor::PlixctlMonitor(PlixctlBusClient& client, PlixctlOutput& output)
    : mClient(client), mOutput(output), mLoop(g_main_loop_new(nullptr, FALSE))
{
}

PlixctlMonitor::~PlixctlMonitor()
{
    g_main_loop_unref(mLoop);
}

// The subscription is made before the list of values is asked for: once the
// service has answered, the bus has the subscription too, so no change after
// the ready line can be missed.
int PlixctlMonitor::run()
{
    mClient.subscribeValuesChanged(
        [this](const std::vector<std::string>& ids, bool persistent) { show(ids, persistent); });
    const auto values = mClient.listValues();
    if (!values) {
        return mOutput.busFailure(mClient.error());
    }
    for (const auto& value : *values) {
        if (PlixctlValueText::isPassword(value.type)) {
            mPasswords.insert(value.id);
        }
    }
    g_signal_connect(mClient.connection(), "closed", G_CALLBACK(onClosed), this);
    const guint interrupt = g_unix_signal_add(SIGINT, onSignal, this);
    const guint terminate = g_unix_signal_add(SIGTERM, onSignal, this);
    std::cerr << "plixctl: monitoring com.orvanta.plix, interrupt to stop" << std::endl;
    g_main_loop_run(mLoop);
    g_source_remove(interrupt);
    g_source_remove(terminate);
    return mStatus;
}

void PlixctlMonitor::show(const std::vector<std::string>& ids, bool persistent)
{
    for (const std::string& id : ids) {
        if (mPasswords.count(id) != 0) {
            mOutput.change(id, nullptr, persistent);
            continue;
        }
        const auto reply = mClient.getValues({id});
        if (!reply) {
            stop(mOutput.busFailure(mClient.error()));
            return;
        }
        GVariant* value = reply->first == 0
                              ? g_variant_lookup_value(reply->second.get(), id.c_str(), nullptr)
                              : nullptr;
        if (value != nullptr) {
            mOutput.change(id, value, persistent);
            g_variant_unref(value);
        } else {
            mOutput.unreadableChange(id, reply->first, persistent);
        }
    }
}

void PlixctlMonitor::stop(int status)
{
    mStatus = status;
    g_main_loop_quit(mLoop);
}

gboolean PlixctlMonitor::onSignal(gpointer self)
{
    static_cast<PlixctlMonitor*>(self)->stop(PlixctlStatus::success);
    return G_SOURCE_CONTINUE;
}

void PlixctlMonitor::onClosed(GDBusConnection*, gboolean, GError*, gpointer self)
{
    auto* monitor = static_cast<PlixctlMonitor*>(self);
    monitor->stop(monitor->mOutput.busFailure("the bus connection was closed"));
}
