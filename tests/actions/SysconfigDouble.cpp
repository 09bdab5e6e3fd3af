#include "SysconfigDouble.h"

#include "sysconfig.h"

#include <cstring>

namespace {

int answer = 1;
std::vector<SysconfigDouble::IpconfigCall> ipconfig;
std::vector<SysconfigDouble::SysnameCall> sysname;
int notifyInit = 0;

} // namespace

void SysconfigDouble::reset()
{
    answer = 1;
    ipconfig.clear();
    sysname.clear();
    notifyInit = 0;
}

void SysconfigDouble::setAnswer(int newAnswer)
{
    answer = newAnswer;
}

const std::vector<SysconfigDouble::IpconfigCall>& SysconfigDouble::ipconfigCalls()
{
    return ipconfig;
}

const std::vector<SysconfigDouble::SysnameCall>& SysconfigDouble::sysnameCalls()
{
    return sysname;
}

int SysconfigDouble::notifyInitCalls()
{
    return notifyInit;
}

extern "C" int sysconfig_set_ipconfig(uint16_t caller, const sysconfig_ipconfig_t* config)
{
    SysconfigDouble::IpconfigCall call{caller, {}};
    static_assert(sizeof(*config) == 12, "the settings record is 12 bytes");
    std::memcpy(call.record.data(), config, sizeof(*config));
    ipconfig.push_back(call);
    return answer;
}

extern "C" int sysconfig_set_sysname(uint16_t caller, const sysconfig_sysname_t* name)
{
    sysname.push_back({caller, std::string(name->name, name->length)});
    return answer;
}

extern "C" int sysconfig_clint_notify_init(void)
{
    ++notifyInit;
    // An answer the action must ignore.
    return -1;
}
