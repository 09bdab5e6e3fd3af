#include "PlixOutputLines.h"
#include "PlixServingTest.h"

namespace {
std::string signatureOf(const PlixBusClient& client, const std::string& method,
                        const std::string& id)
{
    PlixGVariantPtr reply = client.callAdaptor(method, g_variant_new("(s)", id.c_str()));
    return reply ? g_variant_get_type_string(reply.get()) : "no reply";
}
} // namespace

using AdaptorRead = PlixServingTest;

TEST_F(AdaptorRead, TransientGettersReplyStatusThenValue)
{
    EXPECT_EQ(signatureOf(client(), "GetIntValueTransient", "general/count"), "(ii)");
    EXPECT_EQ(signatureOf(client(), "GetDoubleValueTransient", "general/ratio"), "(id)");
    EXPECT_EQ(signatureOf(client(), "GetStringValueTransient", "general/label"), "(is)");
    EXPECT_EQ(signatureOf(client(), "GetBoolValueTransient", "general/enabled"), "(ib)");
}

TEST_F(AdaptorRead, TransientGettersReturnTheStoredValues)
{
    const auto count = client().getIntTransient("general/count");
    EXPECT_EQ(count.status, 0);
    EXPECT_EQ(count.value, 42);
    const auto ratio = client().getDoubleTransient("general/ratio");
    EXPECT_EQ(ratio.status, 0);
    EXPECT_DOUBLE_EQ(ratio.value, 2.5);
    const auto label = client().getStringTransient("general/label");
    EXPECT_EQ(label.status, 0);
    EXPECT_EQ(label.value, "alpha");
    const auto enabled = client().getBoolTransient("general/enabled");
    EXPECT_EQ(enabled.status, 0);
    EXPECT_TRUE(enabled.value);
}

TEST_F(AdaptorRead, PlainGettersReplyValueThenStatus)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(signatureOf(client(), "GetIntValue", "general/count"), "(ii)");
    EXPECT_EQ(signatureOf(client(), "GetDoubleValue", "general/ratio"), "(di)");
    EXPECT_EQ(signatureOf(client(), "GetStringValue", "general/label"), "(si)");
    EXPECT_EQ(signatureOf(client(), "GetBoolValue", "general/enabled"), "(bi)");
}

TEST_F(AdaptorRead, PlainGettersReturnTheStoredValuesToTheHolder)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    const auto count = client().getInt("general/count");
    EXPECT_EQ(count.status, 0);
    EXPECT_EQ(count.value, 42);
    const auto ratio = client().getDouble("general/ratio");
    EXPECT_EQ(ratio.status, 0);
    EXPECT_DOUBLE_EQ(ratio.value, 2.5);
    const auto label = client().getString("general/label");
    EXPECT_EQ(label.status, 0);
    EXPECT_EQ(label.value, "alpha");
    const auto enabled = client().getBool("general/enabled");
    EXPECT_EQ(enabled.status, 0);
    EXPECT_TRUE(enabled.value);
    EXPECT_EQ(client().transactionStop(), 0);
}

TEST_F(AdaptorRead, ReadLogsTheClientAndTheXmlId)
{
    client().getIntTransient("general/count");
    syncOutput();
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] getIntValueTransient client: " + client().uniqueName() +
                                         " xml_id: general/count"));
}

TEST_F(AdaptorRead, DefaultFromTheXmlIsReadable)
{
    const auto mode = client().getIntTransient("general/mode");
    EXPECT_EQ(mode.status, 0);
    EXPECT_EQ(mode.value, 3);
}

TEST_F(AdaptorRead, TransientReadOfAnUndeclaredIdReplies9)
{
    EXPECT_EQ(client().getIntTransient("general/nothing").status, 9);
}

TEST_F(AdaptorRead, TransientReadOfAnotherTypeReplies11AndChangesNothing)
{
    EXPECT_EQ(client().getIntTransient("general/ratio").status, 11);
    syncOutput();
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Requested wrong datatype for general/ratio"));
    EXPECT_DOUBLE_EQ(client().getDoubleTransient("general/ratio").value, 2.5);
}

TEST_F(AdaptorRead, PasswordCannotBeReadReplies11)
{
    EXPECT_EQ(client().getStringTransient("general/secret").status, 11);
}

TEST_F(AdaptorRead, PlainReadWithoutTransactionReplies4)
{
    EXPECT_EQ(client().getInt("general/count").status, 4);
    syncOutput();
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] No transaction with plix active"));
}

TEST_F(AdaptorRead, PlainReadOfAnUndeclaredIdReplies9AndEndsTheTransaction)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().getInt("general/nothing").status, 9);
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_TRUE(
        plixLinesAdjacent(lines(), {"[NOT] general/nothing is not declared in the xml",
                                    "[NOT] Clearing PLIX to be ready for new transactions"}));
}

TEST_F(AdaptorRead, PlainReadOfAnotherTypeReplies11AndEndsTheTransaction)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    EXPECT_EQ(client().getInt("general/ratio").status, 11);
    EXPECT_EQ(client().transactionStop(), 4);
    EXPECT_TRUE(plixLinesAdjacent(lines(), {"[NOT] Clearing PLIX to be ready for new transactions",
                                            "[NOT] Requested wrong datatype for general/ratio"}));
}

TEST_F(AdaptorRead, FailedStringReadRepliesTheEmptyText)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    const auto reply = client().getString("general/count");
    EXPECT_EQ(reply.status, 11);
    EXPECT_EQ(reply.value, "");
}

TEST_F(AdaptorRead, TransientReadDuringAnotherClientsTransactionShowsTheCommittedValue)
{
    PlixBusClient& other = newClient();
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_EQ(client().setInt("general/count", 5), 0);
    const auto seen = other.getIntTransient("general/count");
    EXPECT_EQ(seen.status, 0);
    EXPECT_EQ(seen.value, 42);
}
