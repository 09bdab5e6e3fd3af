#include "PlixctlOutput.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <sstream>

namespace {

struct PlixctlCapture
{
    explicit PlixctlCapture(bool json) : output(json, out, err) {}
    std::ostringstream out;
    std::ostringstream err;
    PlixctlOutput output;
};

GVariant* dictOf(const std::vector<std::pair<std::string, GVariant*>>& entries)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
    for (const auto& [id, value] : entries) {
        g_variant_builder_add(&builder, "{sv}", id.c_str(), value);
    }
    return g_variant_ref_sink(g_variant_builder_end(&builder));
}

const std::vector<PlixctlValueInfo> listed{{"a/count", "int", "main", false},
                                           {"fixed/serial", "string", "fixed", true}};

} // namespace

TEST(PlixctlOutputTest, ValueTableIsAligned)
{
    PlixctlCapture capture(false);
    capture.output.valueTable(listed);
    EXPECT_EQ(capture.out.str(), "ID            TYPE    FILE   ACCESS\n"
                                 "a/count       int     main   read-write\n"
                                 "fixed/serial  string  fixed  read-only\n");
}

TEST(PlixctlOutputTest, ValueTableAsJson)
{
    PlixctlCapture capture(true);
    capture.output.valueTable(listed);
    EXPECT_EQ(
        capture.out.str(),
        "[{\"id\":\"a/count\",\"type\":\"int\",\"file\":\"main\",\"read_only\":false},"
        "{\"id\":\"fixed/serial\",\"type\":\"string\",\"file\":\"fixed\",\"read_only\":true}]\n");
}

TEST(PlixctlOutputTest, ValuesInTheirOrder)
{
    GVariant* values =
        dictOf({{"b/x", g_variant_new_string("hi")}, {"a/y", g_variant_new_double(1.5)}});
    PlixctlCapture text(false);
    text.output.values(values);
    EXPECT_EQ(text.out.str(), "b/x=hi\na/y=1.5\n");
    PlixctlCapture json(true);
    json.output.values(values);
    EXPECT_EQ(json.out.str(), "{\"b/x\":\"hi\",\"a/y\":1.5}\n");
    g_variant_unref(values);
}

TEST(PlixctlOutputTest, PasswordChangeShowsNoValue)
{
    PlixctlCapture text(false);
    text.output.change("a/pw", nullptr, true);
    EXPECT_EQ(text.out.str(), "a/pw=(password)\n");
    PlixctlCapture json(true);
    json.output.change("a/pw", nullptr, false);
    EXPECT_EQ(json.out.str(), "{\"id\":\"a/pw\",\"value\":\"(password)\",\"persistent\":false}\n");
}

TEST(PlixctlOutputTest, UnreadableChangeNamesTheCode)
{
    PlixctlCapture text(false);
    text.output.unreadableChange("a/n", 11, true);
    EXPECT_EQ(text.out.str(), "a/n changed (unreadable: code 11)\n");
}

TEST(PlixctlOutputTest, FailureIsOneLineOnStandardErrorAndAnExitStatus)
{
    PlixctlCapture capture(false);
    EXPECT_EQ(capture.output.failure(15, "fixed/serial"), 6);
    EXPECT_EQ(capture.out.str(), "");
    EXPECT_EQ(capture.err.str(),
              "plixctl: fixed/serial: the value lives in a read-only file (code 15)\n");
}

TEST(PlixctlOutputTest, FailureAsJsonAlsoReportsOnStandardOutput)
{
    PlixctlCapture capture(true);
    EXPECT_EQ(capture.output.failure(8, ""), 3);
    EXPECT_EQ(capture.out.str(),
              "{\"status\":8,\"message\":\"busy: another transaction is open\",\"id\":\"\"}\n");
    EXPECT_EQ(capture.err.str(), "plixctl: busy: another transaction is open (code 8)\n");
}

TEST(PlixctlOutputTest, BusFailureExits2)
{
    PlixctlCapture capture(false);
    EXPECT_EQ(capture.output.busFailure("no socket"), 2);
    EXPECT_EQ(capture.err.str(), "plixctl: cannot reach com.orvanta.plix: no socket\n");
}

TEST(PlixctlOutputTest, InvalidValueExits5)
{
    PlixctlCapture capture(false);
    EXPECT_EQ(capture.output.invalidValue("a/count", "'x' is not a valid int"), 5);
    EXPECT_EQ(capture.err.str(), "plixctl: a/count: 'x' is not a valid int\n");
}

TEST(PlixctlOutputTest, UsageErrorExits64)
{
    PlixctlCapture capture(false);
    EXPECT_EQ(capture.output.usageError("no command given"), 64);
    EXPECT_EQ(capture.err.str(), "plixctl: no command given\nTry 'plixctl --help'.\n");
}

TEST(PlixctlOutputTest, SetReportCountsTheValues)
{
    PlixctlCapture one(false);
    one.output.setDone({"a/x"}, "committed");
    EXPECT_EQ(one.out.str(), "committed: 1 value\n");
    PlixctlCapture json(true);
    json.output.setDone({"a/x", "a/y"}, "applied transiently");
    EXPECT_EQ(json.out.str(),
              "{\"status\":0,\"ids\":[\"a/x\",\"a/y\"],\"mode\":\"applied transiently\"}\n");
}

TEST(PlixctlOutputTest, ChangeNotStoredNamesTheFileAndTheError)
{
    PlixctlCapture capture(false);
    capture.output.notStored({"a/x"}, "/data/main.json", "No space left on device");
    EXPECT_EQ(capture.out.str(),
              "applied, but not stored: /data/main.json: No space left on device\n");
    EXPECT_EQ(capture.err.str(), "");
}

TEST(PlixctlOutputTest, ChangeNotStoredAsJson)
{
    PlixctlCapture capture(true);
    capture.output.notStored({"a/x"}, "/data/main.json", "No space left on device");
    EXPECT_EQ(capture.out.str(),
              "{\"status\":17,\"ids\":[\"a/x\"],\"mode\":\"applied, but not stored\","
              "\"file\":\"/data/main.json\",\"error\":\"No space left on device\"}\n");
}

TEST(PlixctlOutputTest, StoreStatusWithEveryFileWritten)
{
    PlixctlCapture text(false);
    text.output.storeStatus({});
    EXPECT_EQ(text.out.str(), "all store files written\n");
    PlixctlCapture json(true);
    json.output.storeStatus({});
    EXPECT_EQ(json.out.str(), "{\"all_written\":true,\"failing\":[]}\n");
}

TEST(PlixctlOutputTest, StoreStatusListsEachFailingFile)
{
    const std::vector<PlixctlStoreFailure> failing{{"/data/a.json", "No space left on device"},
                                                   {"/data/b.json", "Read-only file system"}};
    PlixctlCapture text(false);
    text.output.storeStatus(failing);
    EXPECT_EQ(text.out.str(), "not stored: /data/a.json: No space left on device\n"
                              "not stored: /data/b.json: Read-only file system\n");
    PlixctlCapture json(true);
    json.output.storeStatus(failing);
    EXPECT_EQ(json.out.str(),
              "{\"all_written\":false,\"failing\":["
              "{\"file\":\"/data/a.json\",\"error\":\"No space left on device\"},"
              "{\"file\":\"/data/b.json\",\"error\":\"Read-only file system\"}]}\n");
}

TEST(PlixctlOutputTest, PendingNamesTheTimeLeftAndTheIds)
{
    PlixctlCapture text(false);
    text.output.pending({true, 42, {"eth0/ipaddress", "eth0/gateway"}});
    text.output.pending({false, 0, {}});
    EXPECT_EQ(text.out.str(), "pending: 42 seconds left: eth0/ipaddress eth0/gateway\n"
                              "nothing pending\n");
    PlixctlCapture json(true);
    json.output.pending({true, 42, {"eth0/ipaddress"}});
    EXPECT_EQ(json.out.str(),
              "{\"pending\":true,\"seconds_left\":42,\"ids\":[\"eth0/ipaddress\"]}\n");
}

TEST(PlixctlOutputTest, AChangeAwaitingConfirmationShowsItsTokenAndDeadline)
{
    PlixctlCapture json(true);
    json.output.awaitingConfirmation({"a/count"}, "0123456789abcdef0123456789abcdef", 60);
    const auto shown = nlohmann::json::parse(json.out.str());
    EXPECT_EQ(shown["token"], "0123456789abcdef0123456789abcdef");
    EXPECT_EQ(shown["ids"], nlohmann::json::array({"a/count"}));
    EXPECT_EQ(shown["deadline"].get<std::string>().size(), 20u);
}
