#include "PlixValueInput.h"

#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixLog.h"
#include "PlixPassword.h"
#include "PlixValue.h"

#include <stdexcept>

bool PlixValueInput::isPassword(const PlixValue& value)
{
    return value.getValueType().find("password") != std::string::npos;
}

std::string PlixValueInput::transientPasswordType(const PlixValue& value)
{
    const std::string type = value.getValueType();
    const std::size_t comma = type.find(',');
    return comma == std::string::npos ? type : type.substr(comma + 1);
}

bool PlixValueInput::refusedAsReadOnly(const PlixValue& value)
{
    const PlixFile* file = value.getDataSet().getFile();
    if (file == nullptr || file->getType() != "read_only") {
        return false;
    }
    plixLog(LOG_WARNING, "client tried to change read_only file %s", file->getName().c_str());
    return true;
}

PlixVariant PlixValueInput::storedForm(const char* operation, const std::string& client,
                                       const std::string& xml_id, const PlixValue& value,
                                       const PlixVariant& offered, std::string passwordType)
{
    if (isPassword(value)) {
        return PlixVariant(PlixPassword(offered.getAsString(), std::move(passwordType), true));
    }
    plixLog(LOG_NOTICE, "%s client: %s xml_id: %s value: %s", operation, client.c_str(),
            xml_id.c_str(), offered.getAsString().c_str());
    return offered;
}

// The candidate itself is never shown. For a non-password the log keeps the
// long-standing pair of lines that log readers already know: the line with
// an empty value, then a second one on standard output only.
void PlixValueInput::logVerify(const std::string& client, const std::string& xml_id,
                               const PlixValue& value)
{
    if (isPassword(value)) {
        plixLog(LOG_WARNING, "Verify client: %s xml_id: %s valuetype: password", client.c_str(),
                xml_id.c_str());
        return;
    }
    plixLog(LOG_WARNING, "Verify client: %s xml_id: %s value: ", client.c_str(), xml_id.c_str());
    plixTrace("%sVerify client: %s xml_id: %s valuetype: password\n", plixLogTag(LOG_WARNING),
              client.c_str(), xml_id.c_str());
}

// A stored password form too short to hold its salt matches nothing; it is
// reported here so that no exception reaches the bus.
int PlixValueInput::compare(const std::string& xml_id, const PlixValue& value,
                            const PlixVariant& candidate)
{
    try {
        return candidate != value.getValue() ? 201 : 0;
    } catch (const std::out_of_range& error) {
        plixLog(LOG_ERR, "Stored password of %s is corrupt: %s", xml_id.c_str(), error.what());
        return 201;
    }
}
