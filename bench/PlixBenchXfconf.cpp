#include "PlixBenchXfconf.h"

#include <string>

PlixBenchXfconf::PlixBenchXfconf() : daemon("org.xfce.Xfconf", "/org/xfce/Xfconf")
{
}

bool PlixBenchXfconf::setAll(int i)
{
    for (int key = 0; key < properties; ++key) {
        const std::string property = "/k" + std::to_string(key);
        GVariant* arguments =
            g_variant_new("(ssv)", "plixbench", property.c_str(), g_variant_new_int32(i % 1000));
        if (!daemon.call("org.xfce.Xfconf", "SetProperty", arguments)) {
            return false;
        }
    }
    return true;
}
