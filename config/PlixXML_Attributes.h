#pragma once

#include <cstring>

// expat hands a tag's attributes as one array of name, text pairs ending in
// a null name. Calls apply(name, text, position) for each pair in document
// order, from the pair at first onward; position is the pair itself, so that
// a caller can read what follows it.
template <typename Apply>
void plixForEachAttribute(const char** first, Apply apply)
{
    for (const char** pair = first; pair != nullptr && *pair != nullptr; pair += 2) {
        apply(pair[0], pair[1], pair);
    }
}

// Calls apply(text) for each attribute called name, from the pair at first on.
template <typename Apply>
void plixForEachAttributeNamed(const char** first, const char* name, Apply apply)
{
    plixForEachAttribute(first, [&](const char* attribute, const char* text, const char**) {
        if (std::strcmp(attribute, name) == 0) {
            apply(text);
        }
    });
}
