#include "PlixMonitorValues.h"

#include "Plix.h"
#include "PlixVariant.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

const char* const settableTypes[] = {"b", "i", "d", "s"};

template <typename T, typename Wrap>
int readAs(int (Plix::*read)(std::string, std::string, T&), Plix& engine, const std::string& client,
           const std::string& xml_id, GVariant** out, Wrap wrap)
{
    T value{};
    const int status = (engine.*read)(client, xml_id, value);
    if (status == 0) {
        *out = wrap(value);
    }
    return status;
}

} // namespace

bool PlixMonitorValues::settable(GVariant* value)
{
    const char* type = g_variant_get_type_string(value);
    return std::any_of(std::begin(settableTypes), std::end(settableTypes),
                       [type](const char* accepted) { return std::strcmp(type, accepted) == 0; });
}

int PlixMonitorValues::set(Plix& engine, const std::string& client, const std::string& xml_id,
                           GVariant* value)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return engine.setBoolValue(client, xml_id, g_variant_get_boolean(value));
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32)) {
        return engine.setIntValue(client, xml_id, g_variant_get_int32(value));
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_DOUBLE)) {
        return engine.setDoubleValue(client, xml_id, g_variant_get_double(value));
    }
    return engine.setStringValue(client, xml_id, g_variant_get_string(value, nullptr));
}

int PlixMonitorValues::readTransient(Plix& engine, const std::string& client,
                                     const std::string& xml_id, int dataType, GVariant** out)
{
    switch (dataType) {
    case PlixVariant::BOOL:
        return readAs(&Plix::getBoolValueTransient, engine, client, xml_id, out,
                      [](bool value) { return g_variant_new_boolean(value); });
    case PlixVariant::INT:
        return readAs(&Plix::getIntValueTransient, engine, client, xml_id, out,
                      [](int value) { return g_variant_new_int32(value); });
    case PlixVariant::DOUBLE:
        return readAs(&Plix::getDoubleValueTransient, engine, client, xml_id, out,
                      [](double value) { return g_variant_new_double(value); });
    default:
        return readAs(&Plix::getStringValueTransient, engine, client, xml_id, out,
                      [](const std::string& value) { return g_variant_new_string(value.c_str()); });
    }
}
