#include "PlixDataSet.h"

#include "PlixValue.h"

#include <algorithm>
#include <stdexcept>

// The by-name index and the verify mark are not copied: the copied members
// stay before the part a copy looks up by name.
PlixDataSet::PlixDataSet(const PlixDataSet& other)
    : file(other.file), values(other.values), firstNamed(other.values.size()),
      namedFrom(other.values.size()), onChangeHandlers(other.onChangeHandlers), name(other.name),
      validators(other.validators)
{
}

void PlixDataSet::insertPlixValue(PlixValue* value)
{
    values.push_back(value);
}

void PlixDataSet::shrinkToFit()
{
    values.shrink_to_fit();
}

PlixValue* PlixDataSet::getValue(std::string name) const
{
    makeByNameList();
    const auto found = std::lower_bound(valuesByName.begin(), valuesByName.end(), name,
                                        [](const PlixValue* member, const std::string& wanted) {
                                            return member->getName() < wanted;
                                        });
    if (found == valuesByName.end() || (*found)->getName() != name) {
        throw std::out_of_range("map::at");
    }
    return *found;
}

// Made again, whole, after any insert. A stable sort keeps members of one name
// in the order they were inserted, so the first inserted is the one kept.
void PlixDataSet::makeByNameList() const
{
    if (namedFrom == values.size()) {
        return;
    }
    const auto named = values.begin() + static_cast<std::ptrdiff_t>(firstNamed);
    valuesByName.assign(named, values.end());
    std::stable_sort(
        valuesByName.begin(), valuesByName.end(),
        [](const PlixValue* a, const PlixValue* b) { return a->getName() < b->getName(); });
    valuesByName.erase(std::unique(valuesByName.begin(), valuesByName.end(),
                                   [](const PlixValue* a, const PlixValue* b) {
                                       return a->getName() == b->getName();
                                   }),
                       valuesByName.end());
    valuesByName.shrink_to_fit();
    namedFrom = values.size();
}

PlixVariant PlixDataSet::getAsVariant(std::string name) const
{
    return getValue(name)->getValue();
}
