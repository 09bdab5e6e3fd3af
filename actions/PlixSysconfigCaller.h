#pragma once

#include <cstdint>

// The identifier with which every call of this service into the
// system-configuration library introduces itself.
constexpr std::uint16_t plixSysconfigCaller = 0xFE02;
