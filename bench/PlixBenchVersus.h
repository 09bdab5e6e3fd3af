#pragma once

#include "PlixBenchBus.h"
#include "PlixBenchDconf.h"
#include "PlixBenchDisk.h"
#include "PlixBenchStats.h"
#include "PlixBenchXfconf.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// The service's durable Apply of every value of a store file of ten values
// (system bus) against the desktop settings store's durable Change of ten
// keys, its store holding only them (session bus), both processes running;
// optionally also the Xfce settings daemon's ten SetProperty calls. All are
// measured in rounds of one call of each, the order rotated every round, so
// that whatever else loads the machine falls on all alike. The disk's share
// of both durable writes is timed in the same rounds, on a copy of the
// store file. Prints the Change and the SetProperty calls against their own
// Ping, the Apply against the Change, the service's way of writing against
// GLib's, and, estimated from the medians, what the Apply and the Change
// cost beyond their disk work.
class PlixBenchVersus
{
public:
    // ids: the XML-IDs of the file's values, in their data set's order;
    // storeCopy: a copy of their store file.
    PlixBenchVersus(std::string service, std::vector<std::string> ids, const std::string& storeCopy,
                    bool withXfconf);

    // Times count rounds after a tenth as many of warm-up; false (with a
    // message on standard error) when a call or a write fails.
    bool run(int count);

private:
    struct Contender
    {
        std::function<bool(int)> operation;
        PlixBenchStats stats;
    };

    bool round(int i, bool warmingUp);
    bool apply(int i);
    void printRows() const;

    PlixBenchBus bus;
    PlixBenchDconf dconf;
    PlixBenchDisk disk;
    std::unique_ptr<PlixBenchXfconf> xfconf;
    std::string service;
    std::vector<std::string> ids;
    // The Apply, the Change and its Ping, the two ways of writing, then the
    // SetProperty calls and their Ping when xfconfd takes part.
    std::vector<Contender> contenders;
};
