#include "PlixValueListing.h"

#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixValue.h"

#include <unordered_set>

namespace {

// A value is keyed by the data set it was first declared in, which is the
// data set it refers to; a repeated declaration only lists it once more.
std::string xmlIdOf(const PlixValue& value)
{
    return value.getDataSet().getName() + "/" + value.getName();
}

PlixValueListing::Entry entryOf(const PlixValue& value)
{
    const PlixFile* file = value.getDataSet().getFile();
    const std::string fileName = file != nullptr ? file->getName() : "";
    const bool readOnly = file != nullptr && file->getType() == "read_only";
    return {xmlIdOf(value), value.getValueType(), fileName, readOnly,
            value.getValue().getDataType()};
}

} // namespace

std::vector<PlixValueListing::Entry> PlixValueListing::of(const std::vector<PlixDataSet*>& dataSets)
{
    std::vector<Entry> entries;
    std::unordered_set<const PlixValue*> listed;
    for (const PlixDataSet* dataSet : dataSets) {
        for (const PlixValue* value : dataSet->getValues()) {
            if (listed.insert(value).second) {
                entries.push_back(entryOf(*value));
            }
        }
    }
    return entries;
}
