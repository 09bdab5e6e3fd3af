#pragma once

#include "PlixBenchBus.h"
#include "PlixBenchStats.h"

#include <functional>
#include <string>
#include <vector>

// Round-trip times of single calls and of whole transactions, measured on
// the service and, with the same calls, on the floor; one table row per
// figure. Every operation checks the status it gets, so a figure is always
// that of the success path; a wrong status ends the run.
class PlixBenchLatency
{
public:
    PlixBenchLatency(std::string service, std::string floor, long values, int count);

    // Ping, transient get and set, get, set and verify inside a transaction,
    // a persistent transaction of ten sets, sequential, pipelined and as one
    // Apply of the monitor interface, and a read of fifty values, as fifty
    // transient gets and as one GetValues. With storeCopy (a copy of the
    // store file the ten values live in, never the service's own), first
    // the durable rewrite of that file alone, whose median then adds to the
    // floor of the three persistent transactions.
    bool runCalls(const std::string& storeCopy);
    // A persistent and a non-persistent transaction of one set on the first
    // int of each file; sizes name the files' number of values.
    bool runCommits(const std::vector<std::string>& ids, const std::vector<long>& sizes);

private:
    // One timed repetition; i counts from the first warm-up round.
    using Operation = std::function<bool(const std::string& destination, int i)>;
    // Opens or closes a transaction around the repetitions.
    using Frame = std::function<bool(const std::string& destination)>;

    // floorAddition: the part of the work the floor cannot do over the bus,
    // measured apart and added to the floor's median.
    bool measure(const std::string& figure, const Operation& operation, const Frame& open = nullptr,
                 const Frame& close = nullptr, double floorAddition = 0.0);
    bool runSingleCalls();
    bool runBatches(double rewrite);
    // A figure of whole transactions, which rewrite a store file each, or of
    // batches of calls: a tenth of the repetitions.
    int transactionCount() const;
    bool measureTransactions(const std::string& figure, const Operation& operation,
                             double floorAddition = 0.0);
    bool time(const std::string& destination, const Operation& operation, const Frame& open,
              const Frame& close, PlixBenchStats& out);
    bool expect(const std::string& destination, const PlixBenchCall& call, int allowed = 0);
    bool transaction(const std::string& destination, bool persistent,
                     const std::vector<std::string>& ids, int i, bool pipelined);
    bool getEach(const std::string& destination, int calls);
    bool getValues(const std::string& destination, const std::vector<const char*>& ids);
    bool apply(const std::string& destination, const std::vector<std::string>& ids, int i);
    Frame startTransaction();
    Frame stopTransaction();

    PlixBenchBus bus;
    std::string service;
    std::string floor;
    long values;
    int count;
    std::string section = "latency";
};
