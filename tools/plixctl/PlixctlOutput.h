#pragma once

#include "PlixctlBusClient.h"

#include <glib.h>

#include <ostream>
#include <string>
#include <vector>

// Everything plixctl prints: results on standard output, as text for people
// or as JSON for scripts (one JSON document per line), and failures as one
// line on standard error. The failure reports answer the exit status.
class PlixctlOutput
{
public:
    PlixctlOutput(bool json, std::ostream& out, std::ostream& err);

    void valueTable(const std::vector<PlixctlValueInfo>& values);
    // values: an a{sv}, shown in its order.
    void values(GVariant* values);
    // The report of a successful set: what was set and how.
    void setDone(const std::vector<std::string>& ids, const char* how);
    void verifyMatched(const std::string& id);
    // A stored change that awaits its confirmation: its token and deadline.
    void awaitingConfirmation(const std::vector<std::string>& ids, const std::string& token,
                              unsigned seconds);
    void confirmationDone(const char* how);
    void pending(const PlixctlPending& state);
    // The report of a set that took effect but whose store file could not be
    // written.
    void notStored(const std::vector<std::string>& ids, const std::string& file,
                   const std::string& error);
    void storeStatus(const std::vector<PlixctlStoreFailure>& failing);
    // One change seen by the monitor; a null value is a password.
    void change(const std::string& id, GVariant* value, bool persistent);
    // A change whose value could not be read.
    void unreadableChange(const std::string& id, int code, bool persistent);

    // A whole document, as it is.
    void document(const std::string& text);
    // A FILE operand that cannot be read or written.
    int fileFailure(const std::string& file, const std::string& error);
    // A code of the service other than success; id may be empty.
    int failure(int code, const std::string& id);
    int busFailure(const std::string& error);
    int invalidValue(const std::string& id, const std::string& problem);
    int usageError(const std::string& problem);

private:
    void line(const std::string& text);

    bool mJson;
    std::ostream& mOut;
    std::ostream& mErr;
};
