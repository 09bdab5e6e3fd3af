#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// A stand-in for the system-configuration library, linked into the action
// tests in its place: it records every call in memory and answers what the
// test asks it to.
namespace SysconfigDouble {

struct IpconfigCall
{
    std::uint16_t caller;
    std::array<std::uint8_t, 12> record;
};

struct SysnameCall
{
    std::uint16_t caller;
    std::string name;
};

// Forgets all calls and answers 1 (applied) again.
void reset();
// The answer of the next sysconfig_set_ipconfig and sysconfig_set_sysname.
void setAnswer(int answer);

const std::vector<IpconfigCall>& ipconfigCalls();
const std::vector<SysnameCall>& sysnameCalls();
int notifyInitCalls();

} // namespace SysconfigDouble
