#include "PlixJzonNode.h"

#include <climits>

namespace {
int clampToInt(double number)
{
    if (number <= static_cast<double>(INT_MIN)) {
        return INT_MIN;
    }
    if (number >= static_cast<double>(INT_MAX)) {
        return INT_MAX;
    }
    return static_cast<int>(number);
}
} // namespace

std::string PlixJzonNode::ToString() const
{
    if (element.is_string()) {
        return element.get<std::string>();
    }
    return element.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

int PlixJzonNode::ToInt() const
{
    if (element.is_number_integer() && !element.is_number_unsigned()) {
        auto number = element.get<std::int64_t>();
        return number < INT_MIN ? INT_MIN : number > INT_MAX ? INT_MAX : static_cast<int>(number);
    }
    if (element.is_number_unsigned()) {
        auto number = element.get<std::uint64_t>();
        return number > static_cast<std::uint64_t>(INT_MAX) ? INT_MAX : static_cast<int>(number);
    }
    if (element.is_number_float()) {
        return clampToInt(element.get<double>());
    }
    return 0;
}

double PlixJzonNode::ToDouble() const
{
    return element.is_number() ? element.get<double>() : 0.0;
}

bool PlixJzonNode::ToBool() const
{
    return element.is_boolean() && element.get<bool>();
}
