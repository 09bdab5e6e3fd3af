#pragma once

#include "PlixValue.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>

// Hashes an XML-ID. Being cheap and never throwing, it lets the table leave
// the hash out of every entry: the table is built once and looked up by
// short texts, where hashing again costs less than eight bytes per value.
struct PlixXmlIdHash
{
    std::size_t operator()(const std::string& xmlId) const noexcept
    {
        return std::hash<std::string>{}(xmlId);
    }
};

// The engine's one table of every declared value, keyed by XML-ID.
using PlixValueTable = std::unordered_map<std::string, PlixValue, PlixXmlIdHash>;
