#pragma once

#include <string>

// The durable rewrite of one store file measured alone, in this process,
// with the service's own store code: the file is read once, then written
// back whole (new file synced, renamed over the old one, directory synced)
// again and again. Of a persistent commit over the bus this is the part the
// disk decides; the rest is the bus and the engine.
class PlixBenchRewrite
{
public:
    // Times count rewrites after a tenth as many of warm-up, prints the row
    // of a configuration of `values` values and hands back the median in
    // microseconds; false (with a message on standard error) when the file
    // cannot be read or written.
    static bool measure(const std::string& path, int count, long values, double& median);
};
