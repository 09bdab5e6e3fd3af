#include "PlixBenchConfig.h"

#include "PlixPassword.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace {
enum class Kind { Int, String, Bool, Double };

Kind kindOf(int index)
{
    return static_cast<Kind>(index % 4);
}

const char* typeName(Kind kind)
{
    switch (kind) {
    case Kind::Int:
        return "int";
    case Kind::String:
        return "string";
    case Kind::Bool:
        return "bool";
    case Kind::Double:
        return "double";
    }
    return "";
}

// Every second int and every second string of a data set is checked, so
// both the plain and the validated path of a set are exercised.
std::string validatorOf(int index)
{
    if (index % 8 == 4) {
        return "            <validation type=\"MinMaxValidator\" min=\"-1000000\" "
               "max=\"1000000\"/>\n";
    }
    if (index % 8 == 5) {
        return "            <validation type=\"StringLengthValidator\" min=\"0\" max=\"64\"/>\n";
    }
    return "";
}

std::string jsonContent(int index)
{
    switch (kindOf(index)) {
    case Kind::Int:
        return std::to_string(index * 7 % 1000);
    case Kind::String:
        return "\"text" + std::to_string(index) + "\"";
    case Kind::Bool:
        return index % 8 == 2 ? "true" : "false";
    case Kind::Double:
        return std::to_string(index) + ".5";
    }
    return "null";
}

GVariant* newValue(Kind kind, int round)
{
    switch (kind) {
    case Kind::String:
        return g_variant_new_string(("new" + std::to_string(round % 1000)).c_str());
    case Kind::Bool:
        return g_variant_new_boolean(round % 2 == 0);
    case Kind::Double:
        return g_variant_new_double(round % 1000 + 0.25);
    default:
        return g_variant_new_int32(round % 1000);
    }
}
} // namespace

PlixBenchConfig::PlixBenchConfig(std::string directory)
    : directory(std::move(directory)),
      storedPassword(PlixPassword(passwordPlainText(), passwordType(), true).getHashedPassword())
{
}

std::string PlixBenchConfig::xmlPath() const
{
    return directory + "/plix_config.xml";
}

std::string PlixBenchConfig::jsonPath(int fileIndex) const
{
    return directory + "/store" + std::to_string(fileIndex) + ".json";
}

std::vector<int> PlixBenchConfig::splitIntoFiles(int values)
{
    std::vector<int> sizes;
    for (int left = values; left > 0; left -= valuesPerFile) {
        sizes.push_back(std::min(left, valuesPerFile));
    }
    return sizes;
}

std::vector<std::string> PlixBenchConfig::intIds(int count)
{
    std::vector<std::string> ids;
    for (int index = 0; index < count; ++index) {
        const int set = index / (valuesPerDataSet / 4);
        const int value = index % (valuesPerDataSet / 4) * 4;
        ids.push_back("ds" + std::to_string(set) + "/v" + std::to_string(value));
    }
    return ids;
}

std::vector<std::string> PlixBenchConfig::mixedIds(int count)
{
    std::vector<std::string> ids;
    for (int index = 0; index < count; ++index) {
        const int set = 1 + index / valuesPerDataSet;
        ids.push_back("ds" + std::to_string(set) + "/v" + std::to_string(index % valuesPerDataSet));
    }
    return ids;
}

std::vector<std::string> PlixBenchConfig::dataSetIds(const std::string& dataSet, int count)
{
    std::vector<std::string> ids;
    for (int index = 0; index < count; ++index) {
        ids.push_back(dataSet + "/v" + std::to_string(index));
    }
    return ids;
}

GVariant* PlixBenchConfig::changesOf(const std::vector<std::string>& ids, int round, bool allInts)
{
    GVariantBuilder changes;
    g_variant_builder_init(&changes, G_VARIANT_TYPE("a{sv}"));
    for (std::size_t index = 0; index < ids.size(); ++index) {
        const Kind kind = allInts ? Kind::Int : kindOf(static_cast<int>(index));
        g_variant_builder_add(&changes, "{sv}", ids[index].c_str(), newValue(kind, round));
    }
    return g_variant_builder_end(&changes);
}

bool PlixBenchConfig::write(const std::vector<int>& fileSizes)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plix>\n";
    for (std::size_t file = 0; file < fileSizes.size(); ++file) {
        xml += "    <Panel_file name=\"store" + std::to_string(file) + "\" type=\"read_write\">" +
               jsonPath(static_cast<int>(file)) + "</Panel_file>\n";
    }
    dataSets = 0;
    firstInts.clear();
    for (std::size_t file = 0; file < fileSizes.size(); ++file) {
        firstInts.push_back("ds" + std::to_string(dataSets) + "/v0");
        std::string json = "{\n";
        for (int left = fileSizes[file]; left > 0; left -= valuesPerDataSet) {
            appendDataSet(static_cast<int>(file), std::min(left, valuesPerDataSet), xml, json);
            json += left > valuesPerDataSet ? ",\n" : "\n";
        }
        json += "}\n";
        if (!writeFile(jsonPath(static_cast<int>(file)), json)) {
            return false;
        }
    }
    xml += "</plix>\n";
    return writeFile(xmlPath(), xml);
}

void PlixBenchConfig::appendDataSet(int fileIndex, int count, std::string& xml, std::string& json)
{
    const std::string name = "ds" + std::to_string(dataSets);
    xml += "    <DataSet ID=\"" + name + "\">\n        <File>store" + std::to_string(fileIndex) +
           "</File>\n";
    json += "  \"" + name + "\": {";
    for (int index = 0; index < count; ++index) {
        json += index == 0 ? "\n" : ",\n";
        appendValue(index, xml, json);
    }
    json += "\n  }";
    xml += "    </DataSet>\n";
    ++dataSets;
}

void PlixBenchConfig::appendValue(int index, std::string& xml, std::string& json)
{
    const std::string name = "v" + std::to_string(index);
    const std::string dataSet = "ds" + std::to_string(dataSets);
    const bool password = dataSets == 0 && index == 1;
    const std::string type = password ? passwordType() : typeName(kindOf(index));
    xml += "        <Value name=\"" + name + "\" type=\"" + type + "\">\n            <jpath>" +
           dataSet + "." + name + "</jpath>\n" + validatorOf(index) + "        </Value>\n";
    json +=
        "    \"" + name + "\": " + (password ? "\"" + storedPassword + "\"" : jsonContent(index));
}

bool PlixBenchConfig::writeFile(const std::string& path, const std::string& text) const
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return false;
    }
    return true;
}
