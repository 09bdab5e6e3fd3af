#include "PlixIntegrationTest.h"

#include <nlohmann/json.hpp>

#include <algorithm>

// A stored password form that is too short to hold its 60-character salt
// part (a file edited by hand, a truncated copy) can match no candidate.
class CorruptPasswordTest : public PlixIntegrationTest
{
protected:
    PlixServiceProcess* startWithSecret(const std::string& stored)
    {
        const std::string xml = writeConfig();
        auto store = nlohmann::json::parse(fileText("store.json"));
        store["general"]["secret"] = stored;
        dir().write("store.json", store.dump(2));
        PlixServiceProcess& service = start({"-c", xml});
        if (!waitServing(service)) {
            ADD_FAILURE() << tail(service);
            return nullptr;
        }
        return &service;
    }

    static bool hasLine(const PlixServiceProcess& service, const std::string& line)
    {
        const auto lines = service.stdoutLines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    static constexpr const char* kCorruptLine =
        "[ERR] Stored password of general/secret is corrupt: basic_string::substr";
};

TEST_F(CorruptPasswordTest, StoredFormShorterThanItsSaltMakesVerifyAnswer201WithAnErrorLine)
{
    PlixServiceProcess* service = startWithSecret("abc");
    ASSERT_NE(service, nullptr);
    PlixBusClient& client = newClient();
    ASSERT_EQ(client.transactionStart(true), 0);
    EXPECT_EQ(client.verify(g_variant_new_string("abc"), "general/secret"), 201);
    bus().admin().callAdaptor("GetIntValueTransient", g_variant_new("(s)", "sync/none"));
    EXPECT_TRUE(hasLine(*service, kCorruptLine)) << tail(*service);
    // The service goes on serving, and the transaction stays open.
    EXPECT_TRUE(service->running());
    EXPECT_EQ(client.transactionStop(), 0);
}

TEST_F(CorruptPasswordTest, StoredFormOneCharacterShortOfItsSaltMakesVerifyAnswer201)
{
    PlixServiceProcess* service = startWithSecret(std::string(59, 'a'));
    ASSERT_NE(service, nullptr);
    PlixBusClient& client = newClient();
    ASSERT_EQ(client.transactionStart(true), 0);
    EXPECT_EQ(client.verify(g_variant_new_string(""), "general/secret"), 201);
    bus().admin().callAdaptor("GetIntValueTransient", g_variant_new("(s)", "sync/none"));
    EXPECT_TRUE(hasLine(*service, kCorruptLine)) << tail(*service);
    EXPECT_TRUE(service->running());
}
