#pragma once

#include "PlixBusClient.h"

#include <string>
#include <utility>
#include <vector>

// The methods of "com.orvanta.plix.Monitor" at "/plix", called through one
// test client's connection.
class PlixMonitorCalls
{
public:
    static constexpr const char* kInterface = "com.orvanta.plix.Monitor";

    struct Listed
    {
        std::string id;
        std::string type;
        std::string file;
        bool readOnly;
        bool operator==(const Listed& other) const
        {
            return id == other.id && type == other.type && file == other.file &&
                   readOnly == other.readOnly;
        }
    };
    // Values read by GetValues, each printed in GVariant text form ("42",
    // "'alpha'", "true"), in the order of the reply.
    struct Read
    {
        int status;
        std::vector<std::pair<std::string, std::string>> values;
    };
    struct Applied
    {
        int status;
        std::string failedId;
    };
    // One entry of an Apply; value is a floating variant.
    using Change = std::pair<std::string, GVariant*>;
    // What StoreStatus answers: each failing file with its error.
    struct Stored
    {
        bool allWritten;
        std::vector<std::pair<std::string, std::string>> failing;
    };

    struct AppliedConfirmed
    {
        int status;
        std::string failedId;
        std::string token;
    };
    struct Waiting
    {
        bool pending;
        unsigned secondsLeft;
        std::vector<std::string> ids;
    };

    explicit PlixMonitorCalls(const PlixBusClient& client) : mClient(client) {}

    std::vector<Listed> listValues() const;
    Read getValues(const std::vector<std::string>& ids) const;
    Applied apply(const std::vector<Change>& changes, bool persistent) const;
    Stored storeStatus() const;
    AppliedConfirmed applyConfirmed(const std::vector<Change>& changes, unsigned seconds) const;
    int confirm(const std::string& token) const;
    int cancel(const std::string& token) const;
    Waiting pending() const;

private:
    static GVariant* changesOf(const std::vector<Change>& changes);
    int callWithToken(const std::string& method, const std::string& token) const;
    PlixGVariantPtr call(const std::string& method, GVariant* params) const;

    const PlixBusClient& mClient;
};
