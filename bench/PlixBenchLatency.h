#pragma once

#include "PlixBenchBus.h"

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
    // and a persistent transaction of ten sets, sequential and pipelined.
    bool runCalls();
    // A persistent and a non-persistent transaction of one set on the first
    // int of each file; sizes name the files' number of values.
    bool runCommits(const std::vector<std::string>& ids, const std::vector<long>& sizes);

private:
    // One timed repetition; i counts from the first warm-up round.
    using Operation = std::function<bool(const std::string& destination, int i)>;
    // Opens or closes a transaction around the repetitions.
    using Frame = std::function<bool(const std::string& destination)>;

    bool measure(const std::string& figure, const Operation& operation, const Frame& open = nullptr,
                 const Frame& close = nullptr);
    // A figure of whole transactions, which rewrite a store file each: a
    // tenth of the repetitions.
    bool measureTransactions(const std::string& figure, const Operation& operation);
    bool time(const std::string& destination, const Operation& operation, const Frame& open,
              const Frame& close, std::vector<double>& out);
    bool expect(const std::string& destination, const PlixBenchCall& call, int allowed = 0);
    bool transaction(const std::string& destination, bool persistent,
                     const std::vector<std::string>& ids, int i, bool pipelined);
    Frame startTransaction();
    Frame stopTransaction();

    PlixBenchBus bus;
    std::string service;
    std::string floor;
    long values;
    int count;
    std::string section = "latency";
};
