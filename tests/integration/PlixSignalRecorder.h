#pragma once

#include "PlixBusClient.h"

#include <chrono>
#include <string>
#include <vector>

// Records the ValuesChanged signals of the service that one client's
// connection receives. The subscription is in place on the bus once the
// constructor returns.
class PlixSignalRecorder
{
public:
    struct Change
    {
        std::vector<std::string> ids;
        bool persistent;
    };

    explicit PlixSignalRecorder(const PlixBusClient& client);
    ~PlixSignalRecorder();
    PlixSignalRecorder(const PlixSignalRecorder&) = delete;
    PlixSignalRecorder& operator=(const PlixSignalRecorder&) = delete;

    // Dispatches arriving signals until count of them were recorded or the
    // bound passes; true when they were.
    bool waitFor(std::size_t count, std::chrono::milliseconds bound);
    const std::vector<Change>& changes() const { return mChanges; }

private:
    static void onSignal(GDBusConnection* connection, const gchar* sender, const gchar* path,
                         const gchar* interface, const gchar* signal, GVariant* parameters,
                         gpointer self);

    GDBusConnection* mConnection;
    guint mSubscription;
    std::vector<Change> mChanges;
};
