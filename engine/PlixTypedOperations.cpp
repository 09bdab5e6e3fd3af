#include "Plix.h"

#include "PlixLog.h"

// The typed entry points of the engine: each one builds or converts the
// tagged value of its type and hands it to the shared read, write or
// verify step.

namespace {

void fromVariant(const PlixVariant& variant, bool& out)
{
    out = variant.asBool();
}

void fromVariant(const PlixVariant& variant, int& out)
{
    out = variant.asInt();
}

void fromVariant(const PlixVariant& variant, double& out)
{
    out = variant.asDouble();
}

void fromVariant(const PlixVariant& variant, std::string& out)
{
    out = variant.asString();
}

} // namespace

template <typename T>
int Plix::readTyped(const char* operation, const std::string& client, const std::string& xml_id,
                    T& value, bool transient)
{
    plixLog(LOG_NOTICE, "%s client: %s xml_id: %s", operation, client.c_str(), xml_id.c_str());
    PlixVariant probe{T{}};
    const int result = transient ? getvalue_transtient_template(client, xml_id, probe)
                                 : getvalue_template(client, xml_id, probe);
    if (result == 0) {
        fromVariant(probe, value);
    }
    return result;
}

int Plix::getBoolValue(std::string client, std::string xml_id, bool& value)
{
    return readTyped("getBoolValue", client, xml_id, value, false);
}

int Plix::getIntValue(std::string client, std::string xml_id, int& value)
{
    return readTyped("getIntValue", client, xml_id, value, false);
}

int Plix::getDoubleValue(std::string client, std::string xml_id, double& value)
{
    return readTyped("getDoubleValue", client, xml_id, value, false);
}

int Plix::getStringValue(std::string client, std::string xml_id, std::string& value)
{
    return readTyped("getStringValue", client, xml_id, value, false);
}

int Plix::getBoolValueTransient(std::string client, std::string xml_id, bool& value)
{
    return readTyped("getBoolValueTransient", client, xml_id, value, true);
}

int Plix::getIntValueTransient(std::string client, std::string xml_id, int& value)
{
    return readTyped("getIntValueTransient", client, xml_id, value, true);
}

int Plix::getDoubleValueTransient(std::string client, std::string xml_id, double& value)
{
    return readTyped("getDoubleValueTransient", client, xml_id, value, true);
}

int Plix::getStringValueTransient(std::string client, std::string xml_id, std::string& value)
{
    return readTyped("getStringValueTransient", client, xml_id, value, true);
}

int Plix::setBoolValue(std::string client, std::string xml_id, bool value)
{
    return setvalue_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::setIntValue(std::string client, std::string xml_id, int value)
{
    return setvalue_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::setDoubleValue(std::string client, std::string xml_id, double value)
{
    return setvalue_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::setStringValue(std::string client, std::string xml_id, std::string value)
{
    return setvalue_template(std::move(client), std::move(xml_id), PlixVariant(std::move(value)));
}

int Plix::setBoolValueTransient(std::string client, std::string xml_id, bool value)
{
    return setvalue_transient_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::setIntValueTransient(std::string client, std::string xml_id, int value)
{
    return setvalue_transient_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::setDoubleValueTransient(std::string client, std::string xml_id, double value)
{
    return setvalue_transient_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::setStringValueTransient(std::string client, std::string xml_id, std::string value)
{
    return setvalue_transient_template(std::move(client), std::move(xml_id),
                                       PlixVariant(std::move(value)));
}

int Plix::verify(std::string client, std::string xml_id, std::string value)
{
    return verify_template(std::move(client), std::move(xml_id), PlixVariant(std::move(value)));
}

int Plix::verify(std::string client, std::string xml_id, int value)
{
    return verify_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::verify(std::string client, std::string xml_id, double value)
{
    return verify_template(std::move(client), std::move(xml_id), PlixVariant(value));
}

int Plix::verify(std::string client, std::string xml_id, bool value)
{
    return verify_template(std::move(client), std::move(xml_id), PlixVariant(value));
}
