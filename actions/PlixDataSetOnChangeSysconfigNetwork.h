#pragma once

#include "PlixDatasetOnChangeHandler.h"
#include "sysconfig.h"

#include <string>

// Applies the network data set (members dhcp, ipaddress, subnetmask,
// gateway) to eth0: either starts the DHCP client, or stops it and hands the
// static address to the system-configuration library.
class PlixDataSetOnChangeSysconfigNetwork : public PlixDatasetOnChangeHandler
{
public:
    explicit PlixDataSetOnChangeSysconfigNetwork(PlixDataSet& dataSet);

    unsigned onChange() override;

    // Writes the dotted parts of text, each read as strtol does and cut to
    // its low 8 bits, into out[0] onwards. At most four bytes are written;
    // missing parts leave their bytes as they were.
    static void parseIPTypeStringToInt(std::string text, unsigned char* out);

private:
    unsigned startDhcp();
    unsigned applyStaticAddress();
    // The library's answer to the settings record.
    static int sendRecord(const sysconfig_ipconfig_t& record);
};
