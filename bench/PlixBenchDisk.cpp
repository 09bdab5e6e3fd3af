#include "PlixBenchDisk.h"

#include <glib.h>

#include <cstdio>

namespace {
bool failed(const char* way, const std::string& copy, const std::string& reason)
{
    std::fprintf(stderr, "plix_bench_client: %s of %s: %s\n", way, copy.c_str(), reason.c_str());
    return false;
}

// The same for a failure that GLib reports; frees its error.
bool failed(const char* way, const std::string& copy, GError* error)
{
    failed(way, copy, std::string(error->message));
    g_error_free(error);
    return false;
}
} // namespace

PlixBenchDisk::PlixBenchDisk(const std::string& copy) : copy(copy), durable(copy)
{
}

bool PlixBenchDisk::read()
{
    gchar* text = nullptr;
    gsize length = 0;
    GError* error = nullptr;
    if (!g_file_get_contents(copy.c_str(), &text, &length, &error)) {
        return failed("reading", copy, error);
    }
    bytes.assign(text, length);
    g_free(text);
    return true;
}

bool PlixBenchDisk::replaceAsGlib() const
{
    GError* error = nullptr;
    return g_file_set_contents(copy.c_str(), bytes.data(), static_cast<gssize>(bytes.size()),
                               &error) ||
           failed("g_file_set_contents", copy, error);
}

bool PlixBenchDisk::replaceAsService() const
{
    std::string reason;
    return durable.replace(bytes, reason) || failed("the durable rewrite", copy, reason);
}
