#pragma once

#include <functional>
#include <string>

// A salted, iterated digest of a password. The plain text never stays in the
// service: it is hashed at once, and only the stored form (digest text plus
// the salt as 60 hex characters) is kept and written to the JSON store.
class PlixPassword
{
public:
    PlixPassword();
    // config is the value's type text, such as "password,sha256,1000". With
    // hash false (or an empty text) the text is taken as an already stored form.
    PlixPassword(std::string text, std::string config, bool hash);
    virtual ~PlixPassword() = default;
    PlixPassword(const PlixPassword&) = default;
    PlixPassword& operator=(const PlixPassword&) = default;

    // True when the candidate plain text hashes to the stored form. Throws
    // std::out_of_range ("basic_string::substr") when the stored form is
    // shorter than its salt, an empty one with a non-empty candidate included.
    bool operator==(std::string candidate) const;

    std::string getHashedPassword() const;
    // False for a stored form too short to end with its salt, which no
    // candidate can be checked against (the empty form is no such form).
    bool holdsSalt() const;
    int getPlainTextLength() const;

    std::string hash(std::string text, std::string salt) const;
    std::string generate_salt(int n) const;
    static std::string string_to_hexstring(std::string text);
    static std::string hexstring_to_string(std::string hex);

    // Test seam: replaces the random salt source (nullptr restores it).
    using SaltSource = std::function<std::string(int n)>;
    static void setSaltSource(SaltSource source);

private:
    // The first digest of text and salt, then iterations digests of the
    // previous digest text alone.
    std::string hashChain(const std::string& text, const std::string& salt) const;

    std::string hashedPassword;
    std::string digestName;
    int iterations = 0;
    int plainTextLength = 0;

    friend class PlixVariant;
};
