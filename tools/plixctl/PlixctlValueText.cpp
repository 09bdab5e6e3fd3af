#include "PlixctlValueText.h"

#include <cerrno>
#include <charconv>
#include <cmath>

namespace {

GVariant* intFrom(const std::string& text)
{
    int value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? g_variant_new_int32(value) : nullptr;
}

// g_ascii_strtod reads the C locale's form whatever the user's locale.
GVariant* doubleFrom(const std::string& text)
{
    if (text.empty() || g_ascii_isspace(text.front())) {
        return nullptr;
    }
    gchar* end = nullptr;
    errno = 0;
    const double value = g_ascii_strtod(text.c_str(), &end);
    const bool whole = end == text.c_str() + text.size();
    return whole && errno == 0 && std::isfinite(value) ? g_variant_new_double(value) : nullptr;
}

GVariant* boolFrom(const std::string& text)
{
    if (text == "true" || text == "1") {
        return g_variant_new_boolean(TRUE);
    }
    if (text == "false" || text == "0") {
        return g_variant_new_boolean(FALSE);
    }
    return nullptr;
}

std::string shortestDouble(double value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

} // namespace

bool PlixctlValueText::isPassword(const std::string& type)
{
    return type.find("password") != std::string::npos;
}

GVariant* PlixctlValueText::fromText(const std::string& type, const std::string& text,
                                     std::string* problem)
{
    GVariant* value = nullptr;
    if (type == "int") {
        value = intFrom(text);
    } else if (type == "double" || type == "float") {
        value = doubleFrom(text);
    } else if (type == "bool") {
        value = boolFrom(text);
    } else {
        return g_variant_new_string(text.c_str());
    }
    if (value == nullptr) {
        *problem = "'" + text + "' is not a valid " + type;
    }
    return value;
}

GVariant* PlixctlValueText::fromJson(const std::string& type, const nlohmann::ordered_json& value,
                                     std::string* problem)
{
    const bool doubleType = type == "double" || type == "float";
    if (value.is_boolean()) {
        return g_variant_new_boolean(value.get<bool>());
    }
    if (value.is_number_integer() && !doubleType) {
        GVariant* number = intFrom(value.dump());
        if (number == nullptr) {
            *problem = value.dump() + " is not a valid int";
        }
        return number;
    }
    if (value.is_number()) {
        return g_variant_new_double(value.get<double>());
    }
    if (value.is_string()) {
        return g_variant_new_string(value.get<std::string>().c_str());
    }
    *problem = value.dump() + " is not a value";
    return nullptr;
}

std::string PlixctlValueText::toText(GVariant* value)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(value) ? "true" : "false";
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32)) {
        return std::to_string(g_variant_get_int32(value));
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_DOUBLE)) {
        return shortestDouble(g_variant_get_double(value));
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) {
        return g_variant_get_string(value, nullptr);
    }
    gchar* printed = g_variant_print(value, FALSE);
    std::string text = printed;
    g_free(printed);
    return text;
}

nlohmann::ordered_json PlixctlValueText::toJson(GVariant* value)
{
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(value) != FALSE;
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32)) {
        return g_variant_get_int32(value);
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_DOUBLE)) {
        return g_variant_get_double(value);
    }
    return toText(value);
}
