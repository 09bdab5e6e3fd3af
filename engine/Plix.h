#pragma once

#include "PlixJsonModifier.h"
#include "PlixValue.h"
#include "PlixVariant.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class PlixDataSet;
class PlixXML_Parser;

// The one engine of the service: owns the configuration model and serves one
// transaction at a time, reads, writes, transient writes and verification.
// Clients are named by their unique bus name; the idle engine holds "-".
// Every operation answers a result code, 0 on success.
class Plix
{
public:
    using ValueMap = std::unordered_map<std::string, PlixValue>;

    static Plix* getInstance();
    Plix();
    virtual ~Plix();
    Plix(const Plix&) = delete;
    Plix& operator=(const Plix&) = delete;

    void configure(int argc, char** argv);
    [[noreturn]] void print_usage();

    int transactionStart(std::string client, bool persistent);
    int transactionStop(std::string client);
    void clear_plix();
    void client_timeout(int signal);
    static void client_timeout_proxy(int signal);
    int check_for_duplicate_change_values(ValueMap::iterator value);

    int getBoolValue(std::string client, std::string xml_id, bool& value);
    int getIntValue(std::string client, std::string xml_id, int& value);
    int getDoubleValue(std::string client, std::string xml_id, double& value);
    int getStringValue(std::string client, std::string xml_id, std::string& value);
    int getBoolValueTransient(std::string client, std::string xml_id, bool& value);
    int getIntValueTransient(std::string client, std::string xml_id, int& value);
    int getDoubleValueTransient(std::string client, std::string xml_id, double& value);
    int getStringValueTransient(std::string client, std::string xml_id, std::string& value);

    int setBoolValue(std::string client, std::string xml_id, bool value);
    int setIntValue(std::string client, std::string xml_id, int value);
    int setDoubleValue(std::string client, std::string xml_id, double value);
    int setStringValue(std::string client, std::string xml_id, std::string value);
    int setBoolValueTransient(std::string client, std::string xml_id, bool value);
    int setIntValueTransient(std::string client, std::string xml_id, int value);
    int setDoubleValueTransient(std::string client, std::string xml_id, double value);
    int setStringValueTransient(std::string client, std::string xml_id, std::string value);

    int verify(std::string client, std::string xml_id, std::string value);
    int verify(std::string client, std::string xml_id, int value);
    int verify(std::string client, std::string xml_id, double value);
    int verify(std::string client, std::string xml_id, bool value);

    void triggerOnChange();
};
