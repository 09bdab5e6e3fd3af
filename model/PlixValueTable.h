#pragma once

#include "PlixValue.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

// Hashes an XML-ID. The standard library keeps a hash in every entry of a
// table whose hasher may throw or is known to be slow, as the one for
// strings is; a hasher of our own that never throws lets each value go
// without those eight bytes. The table is built once at start and looked up
// by short XML-IDs, so hashing a key again while a look-up walks its bucket
// costs little time.
struct PlixXmlIdHash
{
    std::size_t operator()(const std::string& xmlId) const noexcept
    {
        return std::hash<std::string>{}(xmlId);
    }
};

static_assert(noexcept(PlixXmlIdHash{}(std::declval<const std::string&>())),
              "a hasher that may throw makes every entry keep its hash");

// The engine's one table of every declared value, keyed by XML-ID.
using PlixValueTable = std::unordered_map<std::string, PlixValue, PlixXmlIdHash>;
