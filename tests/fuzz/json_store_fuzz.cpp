// Reads one value from an arbitrary JSON store file, writes it back and
// checks that the rewritten file still parses and still has the node.
// Input: the jpath on the first line, the value type on the second, then
// the document.
#include "PlixDataSet.h"
#include "PlixFile.h"
#include "PlixFuzzWorkDir.h"
#include "PlixJsonModifier.h"
#include "PlixValue.h"
#include "jzonFile.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {
bool nextLine(const std::string& text, std::size_t& at, std::string& line)
{
    std::size_t end = text.find('\n', at);
    if (end == std::string::npos) {
        return false;
    }
    line = text.substr(at, end - at);
    at = end + 1;
    return true;
}

// Password types name their own iteration count; a fixed small one keeps
// each run short.
std::string boundedType(const std::string& type)
{
    return type.find("password") == std::string::npos ? type : "password,sha256,1";
}

void readChangeAndRewrite(PlixFile& file, PlixValue& value)
{
    PlixJsonModifier json;
    json.add_panel_file(&file);
    json.get_value(&value);
    Jzon::Node* node = value.getJsonNode();
    if (node == nullptr) {
        std::abort();
    }
    node->IsString();
    node->ToInt();
    node->ToDouble();
    node->ToBool();
    if (value.getValue().getDataType() != PlixVariant::NONE) {
        value.setValue(value.getValue());
        value.changeJsonNode();
    }
    json.rewrite_json();
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
    std::size_t at = 0;
    std::string jpath;
    std::string type;
    if (!nextLine(text, at, jpath) || !nextLine(text, at, type)) {
        return -1;
    }
    std::string path = PlixFuzzWorkDir::write("store.json", text.data() + at, text.size() - at);
    PlixFile file;
    file.setName("store");
    file.setPath(path);
    PlixDataSet dataSet;
    dataSet.setName("d");
    dataSet.setFile(&file);
    PlixValue value("v", dataSet);
    value.setJPath(jpath);
    value.setValueType(boundedType(type));
    try {
        readChangeAndRewrite(file, value);
    } catch (const PlixFuzzExit&) {
        return 0;
    }
    jzonFile rewritten(path);
    if (!rewritten.read() || rewritten.findNode(jpath) == nullptr) {
        std::abort();
    }
    return 0;
}
