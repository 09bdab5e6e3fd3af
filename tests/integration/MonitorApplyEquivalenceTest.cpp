#include "PlixIntegrationTest.h"
#include "PlixMonitorCalls.h"
#include "PlixWait.h"

#include <ostream>

namespace {

const char* const kConfigFiles[] = {"plix_test.xml", "store.json", "fixed.json", "network.json"};
const char* const kComparedFiles[] = {"store.json", "network.json", "marker.out"};
const char* const kStartLine = "[NOT] transactionStart client: ";

// One transaction: each change's value in GVariant text form ("7", "'beta'").
struct PlixApplyScenario
{
    const char* name;
    std::vector<std::pair<std::string, std::string>> changes;
    bool persistent;
};

// What a client and the device see of one transaction.
struct PlixTransactionOutcome
{
    int status = -1;
    std::string failedId;
    std::vector<std::pair<std::string, std::string>> values;
    std::vector<std::string> files;
    std::vector<std::string> log;
};

GVariant* parsed(const std::string& text)
{
    return g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, nullptr);
}

// The typed setter of the configuration interface that matches the value.
int setOne(const PlixBusClient& client, const std::string& id, const std::string& text)
{
    GVariant* value = g_variant_ref_sink(parsed(text));
    int status = -1;
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        status = client.setBool(id, g_variant_get_boolean(value));
    } else if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32)) {
        status = client.setInt(id, g_variant_get_int32(value));
    } else if (g_variant_is_of_type(value, G_VARIANT_TYPE_DOUBLE)) {
        status = client.setDouble(id, g_variant_get_double(value));
    } else {
        status = client.setString(id, g_variant_get_string(value, nullptr));
    }
    g_variant_unref(value);
    return status;
}

std::string replaced(std::string text,
                     const std::vector<std::pair<std::string, std::string>>& replacements)
{
    for (const auto& [from, to] : replacements) {
        for (auto at = text.find(from); at != std::string::npos;
             at = text.find(from, at + to.size())) {
            text.replace(at, from.size(), to);
        }
    }
    return text;
}

void PrintTo(const PlixApplyScenario& scenario, std::ostream* out)
{
    *out << scenario.name;
}

} // namespace

// Apply against the same transaction made call by call through the
// configuration interface, each on a fresh copy of one configuration.
class MonitorApplyEquivalence : public PlixIntegrationTest,
                                public testing::WithParamInterface<PlixApplyScenario>
{
protected:
    PlixTransactionOutcome callByCall()
    {
        PlixServiceProcess* service = startServing();
        mCallByCallService = service;
        PlixTransactionOutcome outcome;
        if (service == nullptr) {
            return outcome;
        }
        const PlixBusClient& client = newClient();
        outcome.status = client.transactionStart(GetParam().persistent);
        for (const auto& [id, text] : GetParam().changes) {
            const int status = setOne(client, id, text);
            if (status != 0 && status != 1) {
                outcome.status = status;
                outcome.failedId = id;
                break;
            }
        }
        if (outcome.failedId.empty()) {
            outcome.status = client.transactionStop();
        }
        observe(*service, client, "", outcome);
        return outcome;
    }

    PlixTransactionOutcome inOneApply()
    {
        const std::string owner = bus().nameOwner(PlixBusClient::kServiceName);
        PlixServiceProcess& service = start({"-c", writeCopy("b")}, {}, "service-b");
        PlixTransactionOutcome outcome;
        const bool replaced = plixWaitUntil(
            [&] {
                const std::string now = bus().nameOwner(PlixBusClient::kServiceName);
                return !now.empty() && now != owner;
            },
            kStartBound);
        if (!replaced || !waitServing(service)) {
            ADD_FAILURE() << "the second service does not serve:\n" << tail(service);
            return outcome;
        }
        // The first service lost its name to the second and ends with 2.
        if (mCallByCallService != nullptr) {
            EXPECT_EQ(mCallByCallService->waitExit(kExitBound), 2) << tail(*mCallByCallService);
        }
        const PlixBusClient& client = newClient();
        std::vector<PlixMonitorCalls::Change> changes;
        for (const auto& [id, text] : GetParam().changes) {
            changes.emplace_back(id, parsed(text));
        }
        const auto reply = PlixMonitorCalls(client).apply(changes, GetParam().persistent);
        outcome.status = reply.status;
        outcome.failedId = reply.failedId;
        observe(service, client, "b/", outcome);
        return outcome;
    }

private:
    PlixServiceProcess* mCallByCallService = nullptr;
    // A copy of the test configuration in a directory of its own.
    std::string writeCopy(const std::string& folder)
    {
        dir().makeDirectory(folder);
        for (const char* name : kConfigFiles) {
            const std::string text =
                PlixTestDir::readFile(std::string(PLIX_TEST_DATA_DIR) + "/" + name);
            writeXml(folder + "/" + name, replaced(text, {{"@DIR@/", "@DIR@/" + folder + "/"}}));
        }
        return dir().file(folder + "/" + kConfigFiles[0]);
    }

    // The service's lines from the transaction's start on, with the
    // client's name made neutral; then the values and files afterwards.
    void observe(const PlixServiceProcess& service, const PlixBusClient& client,
                 const std::string& folder, PlixTransactionOutcome& outcome)
    {
        const auto lines = service.stdoutLines();
        auto from = lines.end();
        for (auto line = lines.begin(); line != lines.end(); ++line) {
            if (line->rfind(kStartLine, 0) == 0) {
                from = line;
            }
        }
        const std::vector<std::pair<std::string, std::string>> neutral{
            {client.uniqueName(), "CLIENT"}, {dir().path() + "/" + folder, "DIR/"}};
        for (auto line = from; line != lines.end(); ++line) {
            outcome.log.push_back(replaced(*line, neutral));
        }
        std::vector<std::string> ids;
        for (const auto& listed : PlixMonitorCalls(client).listValues()) {
            if (listed.type.find("password") == std::string::npos) {
                ids.push_back(listed.id);
            }
        }
        outcome.values = PlixMonitorCalls(client).getValues(ids).values;
        for (const char* name : kComparedFiles) {
            const std::string path = folder + name;
            outcome.files.push_back(dir().exists(path) ? fileText(path) : "(none)");
        }
    }
};

TEST_P(MonitorApplyEquivalence, GivesTheSameCodeValuesFilesAndLogAsCallByCall)
{
    const PlixTransactionOutcome expected = callByCall();
    const PlixTransactionOutcome actual = inOneApply();
    EXPECT_EQ(actual.status, expected.status);
    EXPECT_EQ(actual.failedId, expected.failedId);
    EXPECT_EQ(actual.values, expected.values);
    EXPECT_EQ(actual.files, expected.files);
    EXPECT_EQ(actual.log, expected.log);
    EXPECT_FALSE(expected.log.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Transactions, MonitorApplyEquivalence,
    testing::Values(
        PlixApplyScenario{"PersistentCommit",
                          {{"general/count", "7"},
                           {"general/ratio", "0.5"},
                           {"general/label", "'beta'"},
                           {"general/enabled", "false"}},
                          true},
        PlixApplyScenario{
            "CommitKeptInMemory", {{"general/count", "7"}, {"general/label", "'beta'"}}, false},
        PlixApplyScenario{
            "SecondSetOfTheSameId",
            {{"general/count", "5"}, {"general/label", "'beta'"}, {"general/count", "6"}},
            true},
        PlixApplyScenario{"ValueValidatorRefusesASet",
                          {{"general/count", "7"}, {"general/label", "'far-too-long'"}},
                          true},
        PlixApplyScenario{"SetOfAnotherType", {{"general/count", "'7'"}}, true},
        PlixApplyScenario{"SetInAReadOnlyFile", {{"fixed/serial", "'SN-9'"}}, true},
        PlixApplyScenario{"UndeclaredId", {{"general/count", "7"}, {"general/nothing", "1"}}, true},
        PlixApplyScenario{"DataSetValidatorRollsBack",
                          {{"general/count", "7"}, {"ports/httpport", "5900"}},
                          true},
        PlixApplyScenario{
            "ValueActionRollsBack",
            {{"general/count", "7"}, {"general/marker", "'m1'"}, {"general/broken", "'x'"}},
            true},
        PlixApplyScenario{"NetworkDataSet",
                          {{"eth0/ipaddress", "'192.168.0.20'"}, {"eth0/gateway", "'192.168.0.2'"}},
                          true}),
    [](const testing::TestParamInfo<PlixApplyScenario>& info) { return info.param.name; });
