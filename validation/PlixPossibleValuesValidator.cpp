#include "PlixPossibleValuesValidator.h"

#include "PlixLog.h"

std::vector<std::string> plixSplitAtCommas(const std::string& text)
{
    std::vector<std::string> pieces;
    std::string::size_type start = 0;
    std::string::size_type comma = text.find(',');
    while (comma != std::string::npos) {
        pieces.push_back(text.substr(start, comma - start));
        start = comma + 1;
        comma = text.find(',', start);
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

void plixLogNotPossible(const std::string& valueName)
{
    plixLog(LOG_WARNING, "Validation failed: value for %s not possible!", valueName.c_str());
}
