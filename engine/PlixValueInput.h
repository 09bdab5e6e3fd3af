#pragma once

#include "PlixVariant.h"

#include <string>

class PlixValue;

// The rules for a value a client offers: which values may be written at all,
// the form in which an offered value is stored (a password is hashed at once,
// so its plain text is never kept nor logged), what is logged about it, and
// how a candidate is compared with the stored content.
class PlixValueInput
{
public:
    // The value's type text decides, not the caller's variant: a client
    // sends a password as plain text.
    static bool isPassword(const PlixValue& value);

    // A transient password set hands the hashing only what follows the
    // value type's first comma.
    static std::string transientPasswordType(const PlixValue& value);

    // Logs and answers true for a value in a "read_only" store file.
    static bool refusedAsReadOnly(const PlixValue& value);

    // The variant to offer the value; a non-password is logged with the
    // operation's name and kept as given.
    static PlixVariant storedForm(const char* operation, const std::string& client,
                                  const std::string& xml_id, const PlixValue& value,
                                  const PlixVariant& offered, std::string passwordType);

    static void logVerify(const std::string& client, const std::string& xml_id,
                          const PlixValue& value);

    // 0 when the candidate equals the stored content, else 201.
    static int compare(const std::string& xml_id, const PlixValue& value,
                       const PlixVariant& candidate);
};
