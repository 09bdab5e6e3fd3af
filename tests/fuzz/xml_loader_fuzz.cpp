// Loads arbitrary configuration text and reads its values from the store
// files of the working directory.
#include "PlixFuzzWorkDir.h"
#include "PlixJsonModifier.h"
#include "PlixXML_Parser.h"

#include <cstdint>
#include <string>
#include <vector>

namespace {
// A store path may only name a file of the working directory: a "/" in text
// or an entity declaration could name any file of the machine (a device
// would block the run). Password types are left out: their iteration count
// comes from the text and may take as long as it says.
bool acceptable(const std::string& text)
{
    if (text.find("<!ENTITY") != std::string::npos || text.find("password") != std::string::npos) {
        return false;
    }
    for (std::size_t at = text.find('/'); at != std::string::npos; at = text.find('/', at + 1)) {
        bool endTag = at > 0 && text[at - 1] == '<';
        bool emptyTag = at + 1 < text.size() && text[at + 1] == '>';
        if (!endTag && !emptyTag) {
            return false;
        }
    }
    return true;
}

void readValues(PlixXML_Parser::ValueTable& values, PlixJsonModifier& json)
{
    for (bool linkedPass : {false, true}) {
        for (auto& entry : values) {
            PlixValue& value = entry.second;
            if (value.inJson() &&
                value.valueInJsonWillBeReadFromPreviousPlixValue() == linkedPass) {
                json.get_value(&value);
            }
        }
    }
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    PlixFuzzWorkDir::enter();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string text(reinterpret_cast<const char*>(data), size);
    if (!acceptable(text)) {
        return -1;
    }
    std::string path = PlixFuzzWorkDir::write("config.xml", text.data(), text.size());
    PlixXML_Parser::ValueTable values;
    PlixJsonModifier json;
    std::vector<PlixDataSet*> dataSets;
    try {
        PlixXML_Parser parser(path, "not_created_yet", &values, &json, &dataSets);
        readValues(values, json);
    } catch (const PlixFuzzExit&) {
    }
    return 0;
}
