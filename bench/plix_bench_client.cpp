// The bus side of the benchmarks: drives the service and the floor service
// on the system bus named by DBUS_SYSTEM_BUS_ADDRESS and prints CSV rows
// section,values,figure,unit,min,median,p99,floor,ratio (ratio: how many
// times the floor's cost the service's is).
//
//   plix_bench_client latency SERVICE FLOOR VALUES COUNT [STORE_COPY]
//       STORE_COPY: a copy of the store file of ds0 and ds1, rewritten to
//       measure the durable rewrite alone (never the service's own file)
//   plix_bench_client commits SERVICE FLOOR COUNT ID:SIZE...
//   plix_bench_client throughput SERVICE FLOOR VALUES SECONDS CONNECTIONS...
//   plix_bench_client versus SERVICE COUNT ID STORE_COPY [xfconf]
//       durable Apply of the ten values of the data set of ID (ds<n>/v0, a
//       store file of its own) against durable ten-key writes to the desktop
//       settings store's writer on the session bus (DBUS_SESSION_BUS_ADDRESS)
//       and, with xfconf, ten SetProperty calls to the Xfce settings daemon
//       on the same bus, in rounds of one of each, with the disk's share of
//       both writes timed on STORE_COPY, a copy of the ten values' file
//   plix_bench_client ready NAME SINCE TIMEOUT
//       waits until NAME answers GetIntValueTransient at /plix with status
//       0; prints the milliseconds since SINCE (seconds since the epoch, as
//       bash's EPOCHREALTIME gives them)

#include "PlixBenchBus.h"
#include "PlixBenchConfig.h"
#include "PlixBenchLatency.h"
#include "PlixBenchStats.h"
#include "PlixBenchVersus.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {
const char* const probeId = "ds0/v0";

int usage()
{
    std::fprintf(stderr,
                 "usage: plix_bench_client latency SERVICE FLOOR VALUES COUNT [STORE_COPY]\n"
                 "       plix_bench_client commits SERVICE FLOOR COUNT ID:SIZE...\n"
                 "       plix_bench_client throughput SERVICE FLOOR VALUES SECONDS CONNECTIONS...\n"
                 "       plix_bench_client versus SERVICE COUNT ID STORE_COPY [xfconf]\n"
                 "       plix_bench_client ready NAME SINCE TIMEOUT\n");
    return 2;
}

// Calls per second of clients that each call GetIntValueTransient on their
// own connection as fast as the answers come, for the given time.
double throughput(const std::string& destination, int connections, double seconds)
{
    std::atomic<long> calls{0};
    std::atomic<bool> failed{false};
    std::atomic<int> ready{0};
    std::vector<std::thread> clients;
    const gint64 length = static_cast<gint64>(seconds * G_USEC_PER_SEC);
    std::atomic<gint64> end{0};
    for (int c = 0; c < connections; ++c) {
        clients.emplace_back([&] {
            PlixBenchBus bus;
            ++ready;
            while (end.load() == 0) {
                std::this_thread::yield();
            }
            long mine = 0;
            while (bus.connected() && g_get_monotonic_time() < end.load()) {
                if (bus.call(destination,
                             {"GetIntValueTransient", g_variant_new("(s)", probeId)}) != 0) {
                    failed = true;
                    break;
                }
                ++mine;
            }
            failed = failed || !bus.connected();
            calls += mine;
        });
    }
    while (ready.load() < connections) {
        std::this_thread::yield();
    }
    end = g_get_monotonic_time() + length;
    for (std::thread& client : clients) {
        client.join();
    }
    return failed ? 0.0 : static_cast<double>(calls.load()) / seconds;
}

int runThroughput(int argc, char** argv)
{
    const long values = std::atol(argv[4]);
    const double seconds = std::atof(argv[5]);
    for (int arg = 6; arg < argc; ++arg) {
        const int connections = std::atoi(argv[arg]);
        const double measured = throughput(argv[2], connections, seconds);
        const double floor = throughput(argv[3], connections, seconds);
        if (measured <= 0.0 || floor <= 0.0) {
            std::fprintf(stderr, "plix_bench_client: throughput with %d failed\n", connections);
            return 1;
        }
        PlixBenchStats::printRow("throughput", values, std::to_string(connections) + " connections",
                                 "calls/s", measured, measured, measured, floor, true);
    }
    return 0;
}

int runReady(char** argv)
{
    const double since = std::atof(argv[3]);
    const gint64 deadline = g_get_monotonic_time() + std::atol(argv[4]) * G_USEC_PER_SEC;
    PlixBenchBus bus;
    while (bus.connected() && g_get_monotonic_time() < deadline) {
        int status = PlixBenchBus::busError;
        if (bus.callWhenOwned(argv[2], {"GetIntValueTransient", g_variant_new("(s)", probeId)},
                              status) &&
            status == 0) {
            const double now = static_cast<double>(g_get_real_time()) / G_USEC_PER_SEC;
            std::printf("%.1f\n", (now - since) * 1000.0);
            return 0;
        }
        g_usleep(1000);
    }
    std::fprintf(stderr, "plix_bench_client: %s did not answer in time\n", argv[2]);
    return 1;
}

int runCommits(int argc, char** argv)
{
    std::vector<std::string> ids;
    std::vector<long> sizes;
    for (int arg = 5; arg < argc; ++arg) {
        const std::string item = argv[arg];
        const std::size_t colon = item.find(':');
        ids.push_back(item.substr(0, colon));
        sizes.push_back(std::atol(item.substr(colon + 1).c_str()));
    }
    PlixBenchLatency latency(argv[2], argv[3], 0, std::atoi(argv[4]));
    return latency.runCommits(ids, sizes) ? 0 : 1;
}

int runVersus(char** argv)
{
    const std::string first = argv[4];
    const std::string dataSet = first.substr(0, first.find('/'));
    const bool withXfconf = argv[6] != nullptr && std::string(argv[6]) == "xfconf";
    PlixBenchVersus versus(argv[2], PlixBenchConfig::dataSetIds(dataSet, 10), argv[5], withXfconf);
    return versus.run(std::atoi(argv[3])) ? 0 : 1;
}
} // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "latency" && (argc == 6 || argc == 7)) {
        PlixBenchLatency latency(argv[2], argv[3], std::atol(argv[4]), std::atoi(argv[5]));
        return latency.runCalls(argc == 7 ? argv[6] : "") ? 0 : 1;
    }
    if (mode == "commits" && argc >= 6) {
        return runCommits(argc, argv);
    }
    if (mode == "throughput" && argc >= 7) {
        return runThroughput(argc, argv);
    }
    if (mode == "versus" && (argc == 6 || argc == 7)) {
        return runVersus(argv);
    }
    if (mode == "ready" && argc == 5) {
        return runReady(argv);
    }
    return usage();
}
