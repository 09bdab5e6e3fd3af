#include "PlixPassword.h"
#include "PlixNumber.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace {

const std::string saltAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const char hexDigits[] = "0123456789abcdef";
// The stored form ends with the 30-character salt, hex-encoded.
const int saltLength = 30;
const std::string::size_type saltHexLength = 60;

PlixPassword::SaltSource& saltSource()
{
    static PlixPassword::SaltSource source;
    return source;
}

// Bytes at or above the largest multiple of the alphabet size are dropped, so
// that every salt character is equally likely.
std::string randomSalt(int n)
{
    const unsigned limit = 256 - 256 % saltAlphabet.size();
    std::string salt;
    while (static_cast<int>(salt.size()) < n) {
        // A salt must be unique, not secret: should the random source fail,
        // the zeroed bytes still give a salt that every later check can read.
        unsigned char bytes[64] = {};
        RAND_bytes(bytes, sizeof bytes);
        for (unsigned char byte : bytes) {
            if (byte < limit && static_cast<int>(salt.size()) < n) {
                salt += saltAlphabet[byte % saltAlphabet.size()];
            }
        }
    }
    return salt;
}

// Each byte as lowercase hex without a leading zero: stored passwords were
// written this way, so a candidate must be rendered the same way to match.
// The text is rendered into the caller's string, whose capacity is reused.
void renderUnpaddedHex(const unsigned char* bytes, unsigned length, std::string& text)
{
    char hex[2 * EVP_MAX_MD_SIZE];
    std::size_t used = 0;
    for (unsigned i = 0; i < length; ++i) {
        if (bytes[i] >= 0x10) {
            hex[used++] = hexDigits[bytes[i] >> 4];
        }
        hex[used++] = hexDigits[bytes[i] & 0x0f];
    }
    text.assign(hex, used);
}

// One digest and one context serve every round of a chain: looking the digest
// up and creating a context per round cost more than the digest itself. The
// named digest's implementation is fetched once here; given the name alone,
// every initialisation would look it up again. Should the fetch fail, the
// named digest is used as it is and fails the same way it always did.
class DigestRounds
{
public:
    explicit DigestRounds(const EVP_MD* named)
        : fetched(EVP_MD_fetch(nullptr, EVP_MD_get0_name(named), "")),
          digest(fetched != nullptr ? fetched : named), context(EVP_MD_CTX_new())
    {
        text.reserve(std::size_t{2} * EVP_MAX_MD_SIZE);
    }
    ~DigestRounds()
    {
        EVP_MD_CTX_free(context);
        EVP_MD_free(fetched);
    }
    DigestRounds(const DigestRounds&) = delete;
    DigestRounds& operator=(const DigestRounds&) = delete;

    // The digest of first then second, as unpadded hex in result().
    void round(const char* first, std::size_t firstLength, const char* second,
               std::size_t secondLength)
    {
        unsigned char bytes[EVP_MAX_MD_SIZE];
        unsigned length = 0;
        EVP_DigestInit_ex(context, digest, nullptr);
        EVP_DigestUpdate(context, first, firstLength);
        EVP_DigestUpdate(context, second, secondLength);
        EVP_DigestFinal_ex(context, bytes, &length);
        renderUnpaddedHex(bytes, length, text);
    }

    // Digest of the previous result alone; hex text holds no NUL, so its
    // whole length is what a NUL-terminated reading would take.
    void again() { round(text.data(), text.size(), "", 0); }

    std::string& result() { return text; }

private:
    EVP_MD* fetched;
    const EVP_MD* digest;
    EVP_MD_CTX* context;
    std::string text;
};

// Only the bytes up to the first NUL count, as with every stored form.
std::size_t textLength(const std::string& text)
{
    return std::char_traits<char>::length(text.c_str());
}

// The digest of text and salt, then repeats digests of the previous digest
// text alone.
std::string digestChain(const std::string& digestName, const std::string& text,
                        const std::string& salt, int repeats)
{
    const EVP_MD* digest = EVP_get_digestbyname(digestName.c_str());
    if (digest == nullptr) {
        // An unknown digest name is a configuration slip, not an error: the
        // value then simply has an empty digest text.
        return std::string();
    }
    DigestRounds rounds(digest);
    rounds.round(text.c_str(), textLength(text), salt.c_str(), textLength(salt));
    for (int i = 0; i < repeats; ++i) {
        rounds.again();
    }
    return std::move(rounds.result());
}

} // namespace

PlixPassword::PlixPassword() = default;

PlixPassword::PlixPassword(std::string text, std::string config, bool hash)
{
    // config is "type,digest,iterations". With one comma the digest is the
    // rest and the count comes from the whole text, so "password,sha256"
    // means sha256 with no extra iterations.
    const std::string::size_type first = config.find(',');
    const std::string::size_type second = config.find(',', first + 1);
    digestName = config.substr(first + 1, second - first - 1);
    iterations = plixStrtoInt(config.substr(second + 1).c_str());
    plainTextLength = static_cast<int>(text.size());
    if (text.empty() || !hash) {
        hashedPassword = text;
        return;
    }
    const std::string salt = generate_salt(saltLength);
    hashedPassword = hashChain(text, salt) + string_to_hexstring(salt);
}

bool PlixPassword::operator==(std::string candidate) const
{
    if (hashedPassword.empty() && candidate.empty()) {
        return true;
    }
    // A stored form without room for its salt (an empty one included, when
    // the candidate is not empty) cannot be checked; the caller decides.
    if (!holdsSalt() || hashedPassword.empty()) {
        throw std::out_of_range("basic_string::substr");
    }
    const std::string saltHex = hashedPassword.substr(hashedPassword.size() - saltHexLength);
    const std::string stored = hashedPassword.substr(0, hashedPassword.size() - saltHexLength);
    const std::string digest = hashChain(candidate, hexstring_to_string(saltHex));
    // An unknown digest name hashes every text to nothing; such a password
    // would accept any candidate, so it accepts none.
    if (digest.empty()) {
        return false;
    }
    // Constant time, so the time taken tells nothing about how much matched.
    return digest.size() == stored.size() &&
           CRYPTO_memcmp(digest.data(), stored.data(), stored.size()) == 0;
}

bool PlixPassword::holdsSalt() const
{
    return hashedPassword.empty() || hashedPassword.size() >= saltHexLength;
}

std::string PlixPassword::getHashedPassword() const
{
    return hashedPassword;
}

int PlixPassword::getPlainTextLength() const
{
    return plainTextLength;
}

std::string PlixPassword::hash(std::string text, std::string salt) const
{
    return digestChain(digestName, text, salt, 0);
}

std::string PlixPassword::hashChain(const std::string& text, const std::string& salt) const
{
    return digestChain(digestName, text, salt, iterations);
}

std::string PlixPassword::generate_salt(int n) const
{
    if (n < 1) {
        return std::string();
    }
    if (saltSource()) {
        return saltSource()(n);
    }
    return randomSalt(n);
}

std::string PlixPassword::string_to_hexstring(std::string text)
{
    std::string hex;
    for (unsigned char byte : text) {
        hex += hexDigits[byte >> 4];
        hex += hexDigits[byte & 0x0f];
    }
    return hex;
}

std::string PlixPassword::hexstring_to_string(std::string hex)
{
    std::string text;
    for (std::string::size_type i = 0; i < hex.size(); i += 2) {
        // An odd final character is converted on its own.
        const long byte = std::strtol(hex.substr(i, 2).c_str(), nullptr, 16);
        text += static_cast<char>(byte & 0xff);
    }
    return text;
}

void PlixPassword::setSaltSource(SaltSource source)
{
    saltSource() = std::move(source);
}
