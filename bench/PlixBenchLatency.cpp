#include "PlixBenchLatency.h"

#include "PlixBenchConfig.h"
#include "PlixBenchRewrite.h"

#include <algorithm>
#include <cstdio>

namespace {
const char* const transientId = "ds0/v0";
const char* const passwordId = "ds0/v1";
// Values read in one batch: as many as a front end's page shows.
const int batchSize = 50;

// The arguments of an int set in round i: the value stays within every
// validator of the benchmark configuration.
GVariant* idAndInt(const std::string& id, int i)
{
    return g_variant_new("(si)", id.c_str(), i % 1000);
}

GVariant* idOnly(const std::string& id)
{
    return g_variant_new("(s)", id.c_str());
}
} // namespace

PlixBenchLatency::PlixBenchLatency(std::string service, std::string floor, long values, int count)
    : service(std::move(service)), floor(std::move(floor)), values(values), count(count)
{
}

bool PlixBenchLatency::expect(const std::string& destination, const PlixBenchCall& call,
                              int allowed)
{
    const int status = bus.call(destination, call);
    if (status == 0 || status == allowed) {
        return true;
    }
    std::fprintf(stderr, "plix_bench_client: %s on %s answered %d\n", call.method,
                 destination.c_str(), status);
    return false;
}

PlixBenchLatency::Frame PlixBenchLatency::startTransaction()
{
    return [this](const std::string& destination) {
        return expect(destination, {"Transactionstart", g_variant_new("(b)", FALSE)});
    };
}

PlixBenchLatency::Frame PlixBenchLatency::stopTransaction()
{
    return [this](const std::string& destination) {
        return expect(destination, {"Transactionstop", nullptr});
    };
}

bool PlixBenchLatency::time(const std::string& destination, const Operation& operation,
                            const Frame& open, const Frame& close, PlixBenchStats& out)
{
    return (!open || open(destination)) &&
           out.recordRepeated(count, [&](int i) { return operation(destination, i); }) &&
           (!close || close(destination));
}

bool PlixBenchLatency::measure(const std::string& figure, const Operation& operation,
                               const Frame& open, const Frame& close, double floorAddition)
{
    PlixBenchStats measured;
    PlixBenchStats floorStats;
    if (!time(service, operation, open, close, measured) ||
        !time(floor, operation, open, close, floorStats)) {
        std::fprintf(stderr, "plix_bench_client: %s failed\n", figure.c_str());
        return false;
    }
    PlixBenchStats::printRow(section, values, figure, "us", measured.min(), measured.median(),
                             measured.p99(), floorStats.median() + floorAddition);
    return true;
}

int PlixBenchLatency::transactionCount() const
{
    return std::max(count / 10, 20);
}

bool PlixBenchLatency::measureTransactions(const std::string& figure, const Operation& operation,
                                           double floorAddition)
{
    const int callCount = count;
    count = transactionCount();
    const bool measured = measure(figure, operation, nullptr, nullptr, floorAddition);
    count = callCount;
    return measured;
}

bool PlixBenchLatency::transaction(const std::string& destination, bool persistent,
                                   const std::vector<std::string>& ids, int i, bool pipelined)
{
    std::vector<PlixBenchCall> calls{{"Transactionstart", g_variant_new("(b)", persistent)}};
    for (const std::string& id : ids) {
        calls.push_back({"SetIntValue", idAndInt(id, i)});
    }
    calls.push_back({"Transactionstop", nullptr});
    if (pipelined) {
        for (int status : bus.pipeline(destination, calls)) {
            if (status != 0) {
                std::fprintf(stderr, "plix_bench_client: pipelined call answered %d\n", status);
                return false;
            }
        }
        return true;
    }
    for (const PlixBenchCall& call : calls) {
        if (!expect(destination, call)) {
            return false;
        }
    }
    return true;
}

bool PlixBenchLatency::getEach(const std::string& destination, int calls)
{
    for (int call = 0; call < calls; ++call) {
        if (!expect(destination, {"GetIntValueTransient", idOnly(transientId)})) {
            return false;
        }
    }
    return true;
}

bool PlixBenchLatency::getValues(const std::string& destination,
                                 const std::vector<const char*>& ids)
{
    GVariant* list = g_variant_new_strv(ids.data(), static_cast<gssize>(ids.size()));
    return expect(destination, {"GetValues", g_variant_new("(@as)", list), PlixBenchCall::monitor});
}

bool PlixBenchLatency::apply(const std::string& destination, const std::vector<std::string>& ids,
                             int i)
{
    GVariant* changes = PlixBenchConfig::changesOf(ids, i, true);
    return expect(destination,
                  {"Apply", g_variant_new("(@a{sv}b)", changes, TRUE), PlixBenchCall::monitor});
}

bool PlixBenchLatency::runCalls(const std::string& storeCopy)
{
    // The floor of a persistent commit: the floor's calls plus the durable
    // rewrite of the store file the committed values live in, measured alone.
    double rewrite = 0.0;
    return (storeCopy.empty() ||
            PlixBenchRewrite::measure(storeCopy, transactionCount(), values, rewrite)) &&
           runSingleCalls() && runBatches(rewrite);
}

bool PlixBenchLatency::runBatches(double rewrite)
{
    const std::vector<std::string> tenInts = PlixBenchConfig::intIds(10);
    const std::vector<std::string> fifty = PlixBenchConfig::mixedIds(batchSize);
    std::vector<const char*> fiftyIds;
    for (const std::string& id : fifty) {
        fiftyIds.push_back(id.c_str());
    }
    return measureTransactions(
               "transaction start+10 sets+stop (sequential)",
               [this, &tenInts](const std::string& d, int i) {
                   return transaction(d, true, tenInts, i, false);
               },
               rewrite) &&
           measureTransactions(
               "transaction start+10 sets+stop (pipelined)",
               [this, &tenInts](const std::string& d, int i) {
                   return transaction(d, true, tenInts, i, true);
               },
               rewrite) &&
           measureTransactions(
               "Apply of 10 values (persistent)",
               [this, &tenInts](const std::string& d, int i) { return apply(d, tenInts, i); },
               rewrite) &&
           measureTransactions(
               "50 GetIntValueTransient (sequential)",
               [this](const std::string& d, int) { return getEach(d, batchSize); }) &&
           measureTransactions(
               "GetValues of 50 values",
               [this, &fiftyIds](const std::string& d, int) { return getValues(d, fiftyIds); });
}

bool PlixBenchLatency::runSingleCalls()
{
    const char* plain = PlixBenchConfig::passwordPlainText();
    return measure("Peer.Ping", [this](const std::string& d, int) { return bus.ping(d); }) &&
           measure("GetIntValueTransient",
                   [this](const std::string& d, int) {
                       return expect(d, {"GetIntValueTransient", idOnly(transientId)});
                   }) &&
           measure("SetIntValueTransient",
                   [this](const std::string& d, int i) {
                       return expect(d, {"SetIntValueTransient", idAndInt(transientId, i)});
                   }) &&
           measure(
               "GetIntValue (in transaction)",
               [this](const std::string& d, int) {
                   return expect(d, {"GetIntValue", idOnly(transientId)});
               },
               startTransaction(), stopTransaction()) &&
           measure(
               "SetIntValue (in transaction)",
               [this](const std::string& d, int i) {
                   // Every set after the first replaces the one before: status 1.
                   return expect(d, {"SetIntValue", idAndInt(transientId, i)}, 1);
               },
               startTransaction(), stopTransaction()) &&
           measure(
               "Verify password",
               [this, plain](const std::string& d, int) {
                   return expect(d, {"Verify", g_variant_new("(vs)", g_variant_new_string(plain),
                                                             passwordId)});
               },
               startTransaction(), stopTransaction());
}

bool PlixBenchLatency::runCommits(const std::vector<std::string>& ids,
                                  const std::vector<long>& sizes)
{
    section = "commit";
    for (std::size_t file = 0; file < ids.size() && file < sizes.size(); ++file) {
        values = sizes[file];
        const std::vector<std::string> one{ids[file]};
        const bool measured = measureTransactions("persistent commit of one value",
                                                  [this, &one](const std::string& d, int i) {
                                                      return transaction(d, true, one, i, false);
                                                  }) &&
                              measureTransactions("non-persistent commit of one value",
                                                  [this, &one](const std::string& d, int i) {
                                                      return transaction(d, false, one, i, false);
                                                  });
        if (!measured) {
            return false;
        }
    }
    return true;
}
