#pragma once

#include <string>
#include <vector>

class PlixDataSet;

// What a front end may learn about the declared values without reading
// them: each value once, in the order of the XML file (data sets in order,
// their values in order), with its type text as declared and where it is
// stored.
class PlixValueListing
{
public:
    struct Entry
    {
        std::string xmlId;
        std::string valueType;
        std::string fileName;
        bool readOnly;
        // The data-type number of the current content (PlixVariant).
        int dataType;
    };

    static std::vector<Entry> of(const std::vector<PlixDataSet*>& dataSets);
};
