#include "PlixDataSet.h"

#include "PlixValue.h"

// The by-name map and the verify mark are not copied: a copy is a snapshot of
// the members' order, not a place to look members up.
PlixDataSet::PlixDataSet(const PlixDataSet& other)
    : file(other.file), values(other.values), onChangeHandlers(other.onChangeHandlers),
      name(other.name), validators(other.validators)
{
}

void PlixDataSet::insertPlixValue(PlixValue* value)
{
    values.push_back(value);
    // emplace keeps the first value of a name; later ones stay in the list.
    valuesByName.emplace(value->getName(), value);
}

PlixValue* PlixDataSet::getValue(std::string name) const
{
    return valuesByName.at(name);
}

PlixVariant PlixDataSet::getAsVariant(std::string name) const
{
    return getValue(name)->getValue();
}
