#include "PlixBenchDconf.h"

#include <string>

namespace {
// The writer takes a change set as the serialised bytes of an a{smv}
// dictionary of absolute key paths.
GVariant* changeSetOf(int i)
{
    GVariantBuilder changes;
    g_variant_builder_init(&changes, G_VARIANT_TYPE("a{smv}"));
    for (int key = 0; key < PlixBenchDconf::keysPerChange; ++key) {
        const std::string path = "/plixbench/k" + std::to_string(key);
        GVariant* value = g_variant_new_int32(i % 1000);
        g_variant_builder_add(&changes, "{smv}", path.c_str(), value);
    }
    GVariant* changeSet = g_variant_ref_sink(g_variant_builder_end(&changes));
    GVariant* bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, g_variant_get_data(changeSet),
                                                g_variant_get_size(changeSet), 1);
    g_variant_unref(changeSet);
    return g_variant_new("(@ay)", bytes);
}
} // namespace

PlixBenchDconf::PlixBenchDconf() : writer("ca.desrt.dconf", "/ca/desrt/dconf/Writer/user")
{
}

bool PlixBenchDconf::change(int i)
{
    return writer.call("ca.desrt.dconf.Writer", "Change", changeSetOf(i));
}
