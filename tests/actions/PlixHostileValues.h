#pragma once

#include <string>
#include <vector>

// Value texts that would run "touch <canary>" if a shell read them as code.
inline std::vector<std::string> hostileValues(const std::string& canary)
{
    return {
        ";touch " + canary,           "$(touch " + canary + ")",      "`touch " + canary + "`",
        "'; touch " + canary + "; '", "\"; touch " + canary + "; \"", "a\ntouch " + canary,
        "x && touch " + canary,       "x | touch " + canary,
    };
}
