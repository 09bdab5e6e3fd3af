#include "PlixNumber.h"

#include <climits>
#include <cstdlib>

int plixStrtoInt(const char* text)
{
    const long long value = std::strtoll(text, nullptr, 10);
    if (value > INT_MAX) {
        return INT_MAX;
    }
    if (value < INT_MIN) {
        return INT_MIN;
    }
    return static_cast<int>(value);
}
