#pragma once

#include "PlixValue.h"
#include "PlixValueValidator.h"

#include <algorithm>
#include <string>
#include <vector>

// Splits at every comma without trimming: empty pieces are kept, and an empty
// text is one empty piece.
std::vector<std::string> plixSplitAtCommas(const std::string& text);

void plixLogNotPossible(const std::string& valueName);

// What the string and the integer list validators share: a list declared as
// comma-separated text, and a wanted value that must equal one of its items.
// Item is the kind of content compared; the derived class says how a list
// piece and the wanted value become one.
template <typename Item>
class PlixPossibleValuesValidator : public PlixValueValidator
{
public:
    using PlixValueValidator::PlixValueValidator;

    // Appends the items of the text; repeated declarations add up.
    void setPossibleValues(std::string text)
    {
        for (const std::string& piece : plixSplitAtCommas(text)) {
            possibleValues.push_back(fromPiece(piece));
        }
    }

    unsigned validate() override
    {
        const Item wanted = fromVariant(value.getWantedSetValue());
        if (std::find(possibleValues.begin(), possibleValues.end(), wanted) !=
            possibleValues.end()) {
            return 0;
        }
        plixLogNotPossible(value.getName());
        return 200;
    }

protected:
    virtual Item fromPiece(const std::string& piece) const = 0;
    virtual Item fromVariant(const PlixVariant& wanted) const = 0;

private:
    std::vector<Item> possibleValues;
};
