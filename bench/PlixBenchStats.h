#pragma once

#include <functional>
#include <string>
#include <vector>

// Durations of repeated calls, in microseconds, and their summary.
class PlixBenchStats
{
public:
    // Repetitions run untimed before count timed ones, so that caches,
    // connections and the disk are in their steady state.
    static int warmUpOf(int count) { return count / 10 + 1; }

    void add(double microseconds) { samples.push_back(microseconds); }
    // Runs the operation once and adds its duration unless warming up; false
    // when the operation failed.
    bool record(const std::function<bool()>& operation, bool warmingUp);
    // Runs operation(i) for i from 0 on, warmUpOf(count) + count times, and
    // adds the durations of the last count; stops at the first failure.
    bool recordRepeated(int count, const std::function<bool(int)>& operation);
    bool empty() const { return samples.empty(); }
    double min() const;
    double median() const;
    double p99() const;

    // One row of the benchmark's table and CSV:
    // section,values,figure,unit,min,median,p99,floor,ratio
    // where floor is the floor's median and ratio how many times the floor's
    // cost the service's is: median / floor for times and sizes, floor /
    // median for rates (higherIsBetter).
    static void printRow(const std::string& section, long values, const std::string& figure,
                         const std::string& unit, double min, double median, double p99,
                         double floor, bool higherIsBetter = false);

private:
    double quantile(double q) const;

    std::vector<double> samples;
};
