#include "PlixBenchDisk.h"

#include <glib.h>

#include <cstdio>

namespace {
bool failed(const char* way, const std::string& copy, const std::string& reason)
{
    std::fprintf(stderr, "plix_bench_client: %s of %s: %s\n", way, copy.c_str(), reason.c_str());
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
        const std::string reason = error->message;
        g_error_free(error);
        return failed("reading", copy, reason);
    }
    bytes.assign(text, length);
    g_free(text);
    return true;
}

bool PlixBenchDisk::replaceAsGlib() const
{
    GError* error = nullptr;
    if (!g_file_set_contents(copy.c_str(), bytes.data(), static_cast<gssize>(bytes.size()),
                             &error)) {
        const std::string reason = error->message;
        g_error_free(error);
        return failed("g_file_set_contents", copy, reason);
    }
    return true;
}

bool PlixBenchDisk::replaceAsService() const
{
    std::string reason;
    return durable.replace(bytes, reason) || failed("the durable rewrite", copy, reason);
}
