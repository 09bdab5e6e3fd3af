#include "PlixOutputLines.h"
#include "PlixServingTest.h"

#include <regex>

using AdaptorVerify = PlixServingTest;

TEST_F(AdaptorVerify, VerifyWithoutTransactionReplies4)
{
    EXPECT_EQ(client().verify(g_variant_new_string("alpha"), "general/label"), 4);
}

TEST_F(AdaptorVerify, VerifyOfAStringRepliesEqualOrDifferent)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("alpha"), "general/label"), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("beta"), "general/label"), 201);
}

TEST_F(AdaptorVerify, VerifyOfAnIntWritesTheIntTraceLine)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_int32(42), "general/count"), 0);
    EXPECT_EQ(client().verify(g_variant_new_int32(43), "general/count"), 201);
    EXPECT_TRUE(plixLinesInOrder(lines(), {"Int: 42", "Int: 43"}));
}

TEST_F(AdaptorVerify, VerifyOfADoubleRepliesEqualOrDifferent)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_double(2.5), "general/ratio"), 0);
    EXPECT_EQ(client().verify(g_variant_new_double(2.25), "general/ratio"), 201);
}

TEST_F(AdaptorVerify, VerifyOfABoolBehavesLikeTheInt1WithoutTheTraceLine)
{
    ASSERT_EQ(client().setIntTransient("general/count", 1), 0);
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_boolean(TRUE), "general/count"), 0);
    EXPECT_FALSE(plixHasLine(lines(), "Int: 1"));
    EXPECT_EQ(client().verify(g_variant_new_int32(1), "general/count"), 0);
    EXPECT_TRUE(plixHasLine(lines(), "Int: 1"));
}

TEST_F(AdaptorVerify, VerifyOfABoolValueWithABoolVariantReplies201)
{
    // The interface hands a boolean to the integer comparison, and an int
    // never equals a bool.
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_boolean(TRUE), "general/enabled"), 201);
}

TEST_F(AdaptorVerify, VerifyWithAnInt64VariantReplies11)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_int64(42), "general/count"), 11);
}

TEST_F(AdaptorVerify, VerifyWithAStringArrayVariantReplies11)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    const gchar* texts[] = {"alpha", nullptr};
    EXPECT_EQ(client().verify(g_variant_new_strv(texts, -1), "general/label"), 11);
}

TEST_F(AdaptorVerify, VerifyByAnotherClientReplies8)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(newClient().verify(g_variant_new_string("alpha"), "general/label"), 8);
    EXPECT_EQ(client().verify(g_variant_new_string("alpha"), "general/label"), 0);
}

TEST_F(AdaptorVerify, VerifyOfAnUndeclaredIdReplies9AndEndsTheTransaction)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("x"), "general/nothing"), 9);
    EXPECT_EQ(client().transactionStop(), 4);
}

TEST_F(AdaptorVerify, MismatchKeepsTheTransactionOpen)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("beta"), "general/label"), 201);
    EXPECT_EQ(client().setString("general/label", "beta"), 0);
    EXPECT_EQ(client().transactionStop(), 0);
}

TEST_F(AdaptorVerify, VerifyLogsTheOddPasswordLineForEveryValue)
{
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("alpha"), "general/label"), 0);
    const std::string who = client().uniqueName();
    EXPECT_TRUE(plixLinesAdjacent(
        lines(), {"[NOT] Verify client: " + who + " xml_id: general/label value: ",
                  "[NOT] Verify client: " + who + " xml_id: general/label valuetype: password"}));
}

TEST_F(AdaptorVerify, PasswordIsStoredHashedAndVerifiedAgainstThePlainText)
{
    ASSERT_EQ(client().transactionStart(true), 0);
    ASSERT_EQ(client().setString("general/secret", "pw-one"), 0);
    ASSERT_EQ(client().transactionStop(), 0);

    const std::string stored = storeJson()["general"]["secret"];
    EXPECT_TRUE(std::regex_match(stored, std::regex("[0-9a-f]{32,64}[0-9a-f]{60}")));
    ASSERT_EQ(client().transactionStart(false), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("pw-one"), "general/secret"), 0);
    EXPECT_EQ(client().verify(g_variant_new_string("pw-two"), "general/secret"), 201);
    EXPECT_TRUE(plixHasLine(lines(), "[NOT] Verify client: " + client().uniqueName() +
                                         " xml_id: general/secret valuetype: password"));
    EXPECT_FALSE(plixAnyLineContains(lines(), "pw-one"));
}
