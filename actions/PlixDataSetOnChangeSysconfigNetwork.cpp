#include "PlixDataSetOnChangeSysconfigNetwork.h"

#include "PlixDataSetMember.h"
#include "PlixLog.h"
#include "PlixSysconfigCaller.h"
#include "PlixNumber.h"

#include <cstdlib>

namespace {

// Whether the DHCP client could be stopped or started is not looked at: the
// library's answer to the record decides the result.
void runUnchecked(const char* command)
{
    const int status = std::system(command);
    static_cast<void>(status);
}

// Stops a running DHCP client, so that it cannot overwrite static settings
// and so that a restarted one is the only one.
void stopDhcpClient()
{
    runUnchecked("killall -SIGKILL udhcpc ");
}

} // namespace

PlixDataSetOnChangeSysconfigNetwork::PlixDataSetOnChangeSysconfigNetwork(PlixDataSet& dataSet)
    : PlixDatasetOnChangeHandler(dataSet)
{
}

void PlixDataSetOnChangeSysconfigNetwork::parseIPTypeStringToInt(std::string text,
                                                                 unsigned char* out)
{
    const int recordFieldBytes = 4;
    std::string::size_type start = 0;
    for (int part = 0; part < recordFieldBytes; ++part) {
        const std::string::size_type dot = text.find('.', start);
        const std::string piece =
            text.substr(start, dot == std::string::npos ? std::string::npos : dot - start);
        out[part] = static_cast<unsigned char>(plixStrtoInt(piece.c_str()));
        if (dot == std::string::npos) {
            return;
        }
        start = dot + 1;
    }
}

int PlixDataSetOnChangeSysconfigNetwork::sendRecord(const sysconfig_ipconfig_t& record)
{
    return sysconfig_set_ipconfig(plixSysconfigCaller, &record);
}

unsigned PlixDataSetOnChangeSysconfigNetwork::onChange()
{
    const bool dhcp =
        PlixDataSetMember::readOrExit(
            dataSet, "dhcp",
            "Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange Dhcp Read: %s")
            .asBool();
    return dhcp ? startDhcp() : applyStaticAddress();
}

unsigned PlixDataSetOnChangeSysconfigNetwork::startDhcp()
{
    stopDhcpClient();
    runUnchecked("/sbin/udhcpc -i eth0 -b -a -s /usr/share/udhcpc/default.script &");
    plixLog(LOG_NOTICE, "Successfully started dhcp");
    // An all-zero record tells the library that no static address is set.
    const sysconfig_ipconfig_t noStaticAddress = {};
    return sendRecord(noStaticAddress) == 1 ? 0 : 13;
}

unsigned PlixDataSetOnChangeSysconfigNetwork::applyStaticAddress()
{
    sysconfig_ipconfig_t record = {};
    const std::string address =
        PlixDataSetMember::readOrExit(
            dataSet, "ipaddress",
            "Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange IP address Read: "
            "%s")
            .getAsString();
    parseIPTypeStringToInt(address, record.address);
    const std::string mask =
        PlixDataSetMember::readOrExit(
            dataSet, "subnetmask",
            "Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange Subnetmask read: "
            "%s")
            .getAsString();
    parseIPTypeStringToInt(mask, record.netmask);
    const std::string gateway =
        PlixDataSetMember::readOrExit(
            dataSet, "gateway",
            "Critical exception in PlixDataSetOnChangeSysconfigNetwork::onChange Gateway read: %s")
            .getAsString();
    parseIPTypeStringToInt(gateway, record.gateway);
    stopDhcpClient();

    switch (sendRecord(record)) {
    case 1:
        plixLog(LOG_NOTICE,
                "Successfully used PlixDataSetOnChangeSysconfigNetwork to set IP-address %s, "
                "subnetmask %s and gateway %s",
                address.c_str(), mask.c_str(), gateway.c_str());
        return 0;
    case 3:
        plixLog(LOG_WARNING, "IP-address %s duplicated", address.c_str());
        return 401;
    case 2:
        plixLog(LOG_WARNING, "IP-address %s not supported", address.c_str());
        return 402;
    default:
        plixLog(LOG_WARNING,
                "DataSetOnChangeSysconfigNetwork failed with IP-address %s, subnetmask %s and "
                "gateway %s",
                address.c_str(), mask.c_str(), gateway.c_str());
        return 13;
    }
}
