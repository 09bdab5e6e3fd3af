#include "PlixBenchRewrite.h"

#include "PlixBenchStats.h"
#include "jzonFile.h"

#include <cstdio>

bool PlixBenchRewrite::measure(const std::string& path, int count, long values, double& median)
{
    jzonFile store(path);
    if (!store.read()) {
        std::fprintf(stderr, "plix_bench_client: cannot read the store file %s\n", path.c_str());
        return false;
    }
    PlixBenchStats rewrites;
    if (!rewrites.recordRepeated(count, [&store](int) { return store.write(); })) {
        std::fprintf(stderr, "plix_bench_client: cannot rewrite %s\n", path.c_str());
        return false;
    }
    median = rewrites.median();
    PlixBenchStats::printRow("latency", values, "durable rewrite of the store file (in-process)",
                             "us", rewrites.min(), median, rewrites.p99(), 0.0);
    return true;
}
