#include "FixedSalt.h"
#include "PlixPassword.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

// Digests of "secret" followed by the fixed salt, then of the previous digest
// text alone, taken from the openssl command line and rewritten as unpadded
// lowercase hex.
const std::string sha256Iter0 = "c03c3acc7fa6f8e7acd57c145328ded75fb8ba48c402267114b571ab90425c";
const std::string sha256Iter1 = "14db8c29c8a1a931a7d6e5f8df756fc371b29faaaa79c8bb6bff12d9443";
const std::string sha256Iter1000 =
    "a3bfb7f414fbac3f42db3023e4e6e920afe1ce97d4c0cfa3ee40635dfc9fc0f7";
const std::string sha1Iter0 = "e6b8448b55b67ce879468236c53f0ff3f6a64a4";
const std::string sha1Iter1 = "83961974818e741b0c486adfc03acc2f406290";
const std::string sha1Iter1000 = "2016b2641bc21563f1bcc1afb385ce1690b9d5";

const std::string saltAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

class PlixPasswordFixedSalt : public testing::Test
{
protected:
    FixedSalt salt;
};

} // namespace

TEST_F(PlixPasswordFixedSalt, Sha256WithoutIterationsMatchesKnownDigest)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha256,0", true).getHashedPassword(),
              sha256Iter0 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, Sha256WithOneIterationMatchesKnownDigest)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha256,1", true).getHashedPassword(),
              sha256Iter1 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, Sha256WithThousandIterationsMatchesKnownDigest)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha256,1000", true).getHashedPassword(),
              sha256Iter1000 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, Sha1WithoutIterationsMatchesKnownDigest)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha1,0", true).getHashedPassword(),
              sha1Iter0 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, Sha1WithOneIterationMatchesKnownDigest)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha1,1", true).getHashedPassword(),
              sha1Iter1 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, Sha1WithThousandIterationsMatchesKnownDigest)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha1,1000", true).getHashedPassword(),
              sha1Iter1000 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, NegativeIterationsMeanNoRepetition)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha256,-3", true).getHashedPassword(),
              sha256Iter0 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, HashGivesOneDigestOfTextThenSalt)
{
    const PlixPassword password("", "password,sha256,1000", false);
    EXPECT_EQ(password.hash("secret", FixedSalt::text), sha256Iter0);
    EXPECT_EQ(password.hash(sha256Iter0, ""), sha256Iter1);
}

TEST_F(PlixPasswordFixedSalt, HashReadsTextAndSaltOnlyUpToTheirFirstNul)
{
    const PlixPassword password("", "password,sha256,0", false);
    EXPECT_EQ(
        password.hash(std::string("secret\0junk", 11), std::string(FixedSalt::text) + '\0' + "x"),
        sha256Iter0);
}

TEST_F(PlixPasswordFixedSalt, StoredFormReadBackWithHashFalseVerifies)
{
    const std::string stored = sha256Iter1000 + FixedSalt::hex;
    const PlixPassword password(stored, "password,sha256,1000", false);
    EXPECT_EQ(password.getHashedPassword(), stored);
    EXPECT_TRUE(password == "secret");
    EXPECT_FALSE(password == "Secret");
}

TEST_F(PlixPasswordFixedSalt, OneCommaMeansDigestIsTheRestAndNoIterations)
{
    EXPECT_EQ(PlixPassword("secret", "password,sha256", true).getHashedPassword(),
              sha256Iter0 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, OneCommaTakesIterationsFromTheWholeText)
{
    EXPECT_EQ(PlixPassword("secret", "1,sha256", true).getHashedPassword(),
              sha256Iter1 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, NoCommaTakesTheWholeTextAsDigestName)
{
    EXPECT_EQ(PlixPassword("secret", "sha1", true).getHashedPassword(), sha1Iter0 + FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, IterationsZeroAndOneGiveDifferentStoredDigests)
{
    const std::string once = PlixPassword("secret", "password,sha256,0", true).getHashedPassword();
    const std::string twice = PlixPassword("secret", "password,sha256,1", true).getHashedPassword();
    EXPECT_NE(once, twice);
    EXPECT_EQ(once.substr(once.size() - 60), twice.substr(twice.size() - 60));
}

TEST_F(PlixPasswordFixedSalt, UnknownDigestNameGivesEmptyDigestText)
{
    const PlixPassword password("secret", "password,nosuchdigest,5", true);
    EXPECT_EQ(password.hash("secret", FixedSalt::text), "");
    EXPECT_EQ(password.getHashedPassword(), FixedSalt::hex);
}

TEST_F(PlixPasswordFixedSalt, PasswordWithUnknownDigestNameAcceptsNoCandidate)
{
    const PlixPassword password("secret", "password,nosuchdigest,5", true);
    EXPECT_FALSE(password == "secret");
    EXPECT_FALSE(password == "anything");
}

TEST(PlixPassword, HashingSameTextTwiceGivesDifferentStoredFormsThatBothMatch)
{
    const PlixPassword first("secret", "password,sha256,10", true);
    const PlixPassword second("secret", "password,sha256,10", true);
    EXPECT_NE(first.getHashedPassword(), second.getHashedPassword());
    EXPECT_TRUE(first == "secret");
    EXPECT_TRUE(second == "secret");
}

TEST(PlixPassword, StoredFormIsDigestTextPlusSixtyHexCharacters)
{
    const std::string stored =
        PlixPassword("secret", "password,sha256,0", true).getHashedPassword();
    ASSERT_GE(stored.size(), 60u + 32u);
    ASSERT_LE(stored.size(), 60u + 64u);
    EXPECT_EQ(stored.find_first_not_of("0123456789abcdef"), std::string::npos);
    const std::string salt = PlixPassword::hexstring_to_string(stored.substr(stored.size() - 60));
    ASSERT_EQ(salt.size(), 30u);
    EXPECT_EQ(salt.find_first_not_of(saltAlphabet), std::string::npos);
}

TEST(PlixPassword, EmptyPasswordStoresEmptyTextAndMatchesEmptyCandidate)
{
    const PlixPassword password("", "password,sha256,0", true);
    EXPECT_EQ(password.getHashedPassword(), "");
    EXPECT_TRUE(password == "");
}

TEST(PlixPassword, EmptyPasswordWithNonEmptyCandidateThrowsOutOfRange)
{
    const PlixPassword password("", "password,sha256,0", true);
    EXPECT_THROW(static_cast<void>(password == "x"), std::out_of_range);
}

TEST(PlixPassword, StoredFormShorterThanItsSaltThrowsOutOfRange)
{
    const PlixPassword password(std::string(59, 'a'), "password,sha256,0", false);
    try {
        static_cast<void>(password == "secret");
        FAIL() << "no exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "basic_string::substr");
    }
}

TEST(PlixPassword, StoredFormOfOnlyASaltChecksAnEmptyDigest)
{
    const PlixPassword password(FixedSalt::hex, "password,sha256,0", false);
    EXPECT_FALSE(password == "secret");
}

TEST(PlixPassword, PlainTextLengthIsTheLengthOfTheGivenText)
{
    EXPECT_EQ(PlixPassword("twelve chars", "password,sha256,0", true).getPlainTextLength(), 12);
}

TEST(PlixPassword, PlainTextLengthOfStoredFormReadBackIsItsLength)
{
    const std::string stored = sha1Iter0 + FixedSalt::hex;
    EXPECT_EQ(PlixPassword(stored, "password,sha1,0", false).getPlainTextLength(),
              static_cast<int>(stored.size()));
}

TEST(PlixPassword, DefaultConstructedPasswordIsEmpty)
{
    const PlixPassword password;
    EXPECT_EQ(password.getHashedPassword(), "");
    EXPECT_TRUE(password == "");
}

TEST(PlixPassword, CopyKeepsStoredFormDigestAndIterations)
{
    const PlixPassword original(sha1Iter1 + FixedSalt::hex, "password,sha1,1", false);
    const PlixPassword copy(original);
    EXPECT_EQ(copy.getHashedPassword(), original.getHashedPassword());
    EXPECT_EQ(copy.getPlainTextLength(), original.getPlainTextLength());
    EXPECT_TRUE(copy == "secret");
}

TEST(PlixPassword, GenerateSaltDrawsFromTheAlphabet)
{
    const std::string salt = PlixPassword().generate_salt(300);
    ASSERT_EQ(salt.size(), 300u);
    EXPECT_EQ(salt.find_first_not_of(saltAlphabet), std::string::npos);
}

TEST(PlixPassword, GenerateSaltBelowOneIsEmpty)
{
    EXPECT_EQ(PlixPassword().generate_salt(0), "");
    EXPECT_EQ(PlixPassword().generate_salt(-1), "");
}

TEST(PlixPassword, SaltSourceReplacedAndRestored)
{
    PlixPassword::setSaltSource([](int n) { return std::string(static_cast<size_t>(n), 'z'); });
    EXPECT_EQ(PlixPassword().generate_salt(3), "zzz");
    PlixPassword::setSaltSource(nullptr);
    EXPECT_NE(PlixPassword().generate_salt(30), std::string(30, 'z'));
}

TEST(PlixPassword, StringToHexstringWritesTwoLowercaseDigitsPerByte)
{
    EXPECT_EQ(PlixPassword::string_to_hexstring(std::string("\x05\xa0Z", 3)), "05a05a");
    EXPECT_EQ(PlixPassword::string_to_hexstring(""), "");
}

TEST(PlixPassword, HexstringRoundTripKeepsEveryByte)
{
    std::string every;
    for (int byte = 0; byte < 256; ++byte) {
        every += static_cast<char>(byte);
    }
    EXPECT_EQ(PlixPassword::hexstring_to_string(PlixPassword::string_to_hexstring(every)), every);
}

TEST(PlixPassword, HexstringOddFinalCharacterIsConvertedAlone)
{
    EXPECT_EQ(PlixPassword::hexstring_to_string("41424"), std::string("AB\x04", 3));
}

TEST(PlixPassword, HexstringAcceptsUppercaseDigits)
{
    EXPECT_EQ(PlixPassword::hexstring_to_string("4A6b"), "Jk");
}
