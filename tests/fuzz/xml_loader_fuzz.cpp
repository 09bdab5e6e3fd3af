// Loads arbitrary configuration text and reads its values from the store
// files of the working directory: whatever path a store file is given, it is
// opened there (PlixFuzzOpen.cpp), so absolute and relative paths,
// JSON-pointer jpaths and password types are all loaded.
#include "PlixFuzzOpen.h"
#include "PlixFuzzWorkDir.h"
#include "PlixJsonModifier.h"
#include "PlixXML_Parser.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

namespace {
// An entity declaration could name any file of the machine. A character
// reference could spell a password type's iteration count unseen by
// boundedIterations.
bool acceptable(const std::string& text)
{
    return text.find("<!ENTITY") == std::string::npos && text.find("&#") == std::string::npos;
}

// A password type's iteration count comes from the text, and hashing its
// default value takes as long as the count says: in every quoted text that
// names a password type, each number is cut to three digits.
std::string boundedIterations(std::string text)
{
    for (std::size_t at = text.find("password"); at != std::string::npos;
         at = text.find("password", at + 1)) {
        const std::size_t begin = text.find_last_of("\"'<>", at) + 1;
        const std::size_t end = std::min(text.find_first_of("\"'<>", at), text.size());
        std::size_t digits = 0;
        for (std::size_t i = begin; i < end; ++i) {
            digits = std::isdigit(static_cast<unsigned char>(text[i])) != 0 ? digits + 1 : 0;
            if (digits > 3) {
                text[i] = ' ';
            }
        }
    }
    return text;
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
    const std::string text =
        boundedIterations(std::string(reinterpret_cast<const char*>(data), size));
    if (!acceptable(text)) {
        return -1;
    }
    std::string path = PlixFuzzWorkDir::write("config.xml", text.data(), text.size());
    PlixXML_Parser::ValueTable values;
    PlixJsonModifier json;
    std::vector<PlixDataSet*> dataSets;
    const PlixFuzzOpenConfined confined;
    try {
        PlixXML_Parser parser(path, "not_created_yet", &values, &json, &dataSets);
        readValues(values, json);
    } catch (const PlixFuzzExit&) {
    }
    return 0;
}
