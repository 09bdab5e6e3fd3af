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
    std::string error;
    if (!rewrites.recordRepeated(count, [&store, &error](int) { return store.write(error); })) {
        std::fprintf(stderr, "plix_bench_client: cannot rewrite %s: %s\n", path.c_str(),
                     error.c_str());
        return false;
    }
    median = rewrites.median();
    PlixBenchStats::printRow("latency", values, "durable rewrite of the store file (in-process)",
                             "us", rewrites.min(), median, rewrites.p99(), 0.0);
    return true;
}
