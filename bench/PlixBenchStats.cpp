#include "PlixBenchStats.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

double PlixBenchStats::quantile(double q) const
{
    if (samples.empty()) {
        return 0.0;
    }
    std::vector<double> sorted(samples);
    std::sort(sorted.begin(), sorted.end());
    const auto last = static_cast<double>(sorted.size() - 1);
    return sorted[static_cast<std::size_t>(std::lround(q * last))];
}

bool PlixBenchStats::record(const std::function<bool()>& operation, bool warmingUp)
{
    const gint64 begin = g_get_monotonic_time();
    if (!operation()) {
        return false;
    }
    if (!warmingUp) {
        add(static_cast<double>(g_get_monotonic_time() - begin));
    }
    return true;
}

bool PlixBenchStats::recordRepeated(int count, const std::function<bool(int)>& operation)
{
    const int warmUp = warmUpOf(count);
    for (int i = 0; i < warmUp + count; ++i) {
        if (!record([&operation, i] { return operation(i); }, i < warmUp)) {
            return false;
        }
    }
    return true;
}

double PlixBenchStats::min() const
{
    return quantile(0.0);
}

double PlixBenchStats::median() const
{
    return quantile(0.5);
}

double PlixBenchStats::p99() const
{
    return quantile(0.99);
}

void PlixBenchStats::printRow(const std::string& section, long values, const std::string& figure,
                              const std::string& unit, double min, double median, double p99,
                              double floor, bool higherIsBetter)
{
    const double numerator = higherIsBetter ? floor : median;
    const double denominator = higherIsBetter ? median : floor;
    const double ratio = denominator > 0.0 ? numerator / denominator : 0.0;
    std::printf("%s,%ld,%s,%s,%.1f,%.1f,%.1f,%.1f,%.2f\n", section.c_str(), values, figure.c_str(),
                unit.c_str(), min, median, p99, floor, ratio);
    std::fflush(stdout);
}
