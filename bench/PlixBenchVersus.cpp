#include "PlixBenchVersus.h"

#include "PlixBenchConfig.h"

#include <cstdio>

namespace {
enum { applyAll, changeAll, pingDconf, writeAsGlib, writeAsService, setAllXfconf, pingXfconf };
constexpr int noFloor = -1;
const char* const section = "comparison";
} // namespace

PlixBenchVersus::PlixBenchVersus(std::string service, std::vector<std::string> ids,
                                 const std::string& storeCopy, bool withXfconf)
    : disk(storeCopy), service(std::move(service)), ids(std::move(ids))
{
    contenders.push_back({[this](int i) { return apply(i); }, {}});
    contenders.push_back({[this](int i) { return dconf.change(i); }, {}});
    contenders.push_back({[this](int) { return dconf.ping(); }, {}});
    contenders.push_back({[this](int) { return disk.replaceAsGlib(); }, {}});
    contenders.push_back({[this](int) { return disk.replaceAsService(); }, {}});
    if (withXfconf) {
        xfconf = std::make_unique<PlixBenchXfconf>();
        contenders.push_back({[this](int i) { return xfconf->setAll(i); }, {}});
        contenders.push_back({[this](int) { return xfconf->ping(); }, {}});
    }
}

bool PlixBenchVersus::apply(int i)
{
    GVariant* changeSet = PlixBenchConfig::changesOf(ids, i, false);
    const int status = bus.call(
        service, {"Apply", g_variant_new("(@a{sv}b)", changeSet, TRUE), PlixBenchCall::monitor});
    if (status != 0) {
        std::fprintf(stderr, "plix_bench_client: Apply on %s answered %d\n", service.c_str(),
                     status);
    }
    return status == 0;
}

bool PlixBenchVersus::round(int i, bool warmingUp)
{
    const std::size_t count = contenders.size();
    for (std::size_t k = 0; k < count; ++k) {
        Contender& next = contenders[(static_cast<std::size_t>(i) + k) % count];
        if (!next.stats.record([&next, i] { return next.operation(i); }, warmingUp)) {
            return false;
        }
    }
    return true;
}

bool PlixBenchVersus::run(int count)
{
    if (!bus.connected() || !dconf.connected() || (xfconf && !xfconf->connected()) ||
        !disk.read()) {
        return false;
    }
    const int warmUp = PlixBenchStats::warmUpOf(count);
    for (int i = 0; i < warmUp + count; ++i) {
        if (!round(i, i < warmUp)) {
            return false;
        }
    }
    printRows();
    return true;
}

void PlixBenchVersus::printRows() const
{
    // A floor of noFloor prints the row without one.
    const auto print = [this](const std::string& figure, long values, int measured, int floor) {
        const PlixBenchStats& stats = contenders[measured].stats;
        PlixBenchStats::printRow(section, values, figure, "us", stats.min(), stats.median(),
                                 stats.p99(),
                                 floor == noFloor ? 0.0 : contenders[floor].stats.median());
    };
    print("dconf Writer.Change of 10 keys (durable)", PlixBenchDconf::keysPerChange, changeAll,
          pingDconf);
    if (xfconf) {
        print("xfconfd 10 SetProperty of one channel (not durable at reply)",
              PlixBenchXfconf::properties, setAllXfconf, pingXfconf);
    }
    const long values = static_cast<long>(ids.size());
    print("Apply of every value of a 10-value file (durable) vs dconf Change", values, applyAll,
          changeAll);
    print("disk alone: g_file_set_contents of a copy of the file (as dconf writes)", values,
          writeAsGlib, noFloor);
    print("disk alone: the service's durable rewrite of the copy vs g_file_set_contents", values,
          writeAsService, writeAsGlib);
    // Estimates from the medians: one number in all three columns.
    const auto medianOf = [this](int contender) { return contenders[contender].stats.median(); };
    const double applyBeyond = medianOf(applyAll) - medianOf(writeAsService);
    PlixBenchStats::printRow(
        section, values, "Apply less the service's disk work vs Change less GLib's", "us",
        applyBeyond, applyBeyond, applyBeyond, medianOf(changeAll) - medianOf(writeAsGlib));
}
