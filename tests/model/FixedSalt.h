#pragma once

#include "PlixPassword.h"

#include <string>

// Fixes the salt of every password hashed while it lives, so that stored
// forms can be compared with digests computed outside the service.
class FixedSalt
{
public:
    static constexpr const char* text = "0123456789ABCDEFGHIJabcdefghij";
    static constexpr const char* hex =
        "303132333435363738394142434445464748494a6162636465666768696a";

    FixedSalt()
    {
        PlixPassword::setSaltSource([](int n) { return std::string(text).substr(0, n); });
    }
    ~FixedSalt() { PlixPassword::setSaltSource(nullptr); }
    FixedSalt(const FixedSalt&) = delete;
    FixedSalt& operator=(const FixedSalt&) = delete;
};
