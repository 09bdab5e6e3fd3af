#pragma once

#include "PlixctlArguments.h"
#include "PlixctlBusClient.h"
#include "PlixctlOutput.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

// The one-shot commands of plixctl (list, get, set, verify, status, confirm,
// cancel, pending), each a short
// exchange with the service; every one answers plixctl's exit status.
class PlixctlCommands
{
public:
    struct Change
    {
        std::string id;
        GVariant* value;
    };

    PlixctlCommands(PlixctlBusClient& client, PlixctlOutput& output);

    int list();
    int get(const std::vector<std::string>& ids);
    // confirmSeconds: a stored change kept only if confirmed in that time.
    int set(const std::vector<std::string>& assignments, PlixctlArguments::SetMode mode,
            std::optional<unsigned> confirmSeconds = std::nullopt);
    int verify(const std::string& id, const std::string& text);
    int status();
    int confirm(const std::string& token);
    int cancel(const std::string& token);
    int pending();

    // Sets the values in one stored transaction, kept only if confirmed in
    // confirmSeconds when given, and reports it as set does.
    int store(const std::vector<Change>& changes, std::optional<unsigned> confirmSeconds);

private:
    // The declared type text of every value, from ListValues.
    bool loadTypes(std::map<std::string, std::string>& types);
    // The variant to send for one VALUE, or null after reporting why (the
    // exit status is then in *status).
    GVariant* valueFor(const std::map<std::string, std::string>& types, const std::string& id,
                       const std::string& text, int* status);
    int applyAll(const std::vector<Change>& changes, bool persistent);
    int applyConfirmed(const std::vector<Change>& changes, unsigned seconds);
    static GVariant* changesOf(const std::vector<Change>& changes);
    // Reports the answer to Confirm or Cancel; done names what happened.
    int reportTokenCall(std::optional<int> code, const char* done);
    // Reports a change that was applied but whose store file could not be
    // written, with the error that StoreStatus gives for the file.
    int notStored(const std::vector<Change>& changes, const std::string& file);
    int setTransientOneByOne(const std::vector<Change>& changes);
    std::optional<PlixctlResult> verifyInOwnTransaction(GVariant* candidate, const std::string& id);

    PlixctlBusClient& mClient;
    PlixctlOutput& mOutput;
};
