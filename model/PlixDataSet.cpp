#include "PlixDataSet.h"

#include "PlixValue.h"

#include <algorithm>
#include <stdexcept>

// The by-name index and the verify mark are not copied: a copy is a snapshot of
// the members' order, not a place to look members up.
PlixDataSet::PlixDataSet(const PlixDataSet& other)
    : file(other.file), values(other.values), onChangeHandlers(other.onChangeHandlers),
      name(other.name), validators(other.validators)
{
}

void PlixDataSet::insertPlixValue(PlixValue* value)
{
    values.push_back(value);
    valuesByName.push_back(value);
}

void PlixDataSet::shrinkToFit()
{
    values.shrink_to_fit();
    valuesByName.shrink_to_fit();
}

PlixValue* PlixDataSet::getValue(std::string name) const
{
    sortInNewNames();
    const auto found = std::lower_bound(valuesByName.begin(), valuesByName.end(), name,
                                        [](const PlixValue* member, const std::string& wanted) {
                                            return member->getName() < wanted;
                                        });
    if (found == valuesByName.end() || (*found)->getName() != name) {
        throw std::out_of_range("map::at");
    }
    return *found;
}

// A stable sort keeps members of one name in the order they were inserted
// (the part sorted before holds only earlier ones), so the first inserted
// comes first and is the one kept.
void PlixDataSet::sortInNewNames() const
{
    if (sortedByName == valuesByName.size()) {
        return;
    }
    std::stable_sort(
        valuesByName.begin(), valuesByName.end(),
        [](const PlixValue* a, const PlixValue* b) { return a->getName() < b->getName(); });
    valuesByName.erase(std::unique(valuesByName.begin(), valuesByName.end(),
                                   [](const PlixValue* a, const PlixValue* b) {
                                       return a->getName() == b->getName();
                                   }),
                       valuesByName.end());
    sortedByName = valuesByName.size();
}

PlixVariant PlixDataSet::getAsVariant(std::string name) const
{
    return getValue(name)->getValue();
}
