#include "PlixLoadedConfig.h"

#include "PlixDataSet.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

std::string PlixLoadedConfig::document(const std::string& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plix_config>\n" + body +
           "\n</plix_config>\n";
}

std::vector<std::string> PlixLoadedConfig::lines(const std::string& output)
{
    std::vector<std::string> result;
    std::istringstream stream(output);
    std::string line;
    while (std::getline(stream, line)) {
        result.push_back(line);
    }
    return result;
}

std::string PlixLoadedConfig::endsWithLines(const std::vector<std::string>& expected)
{
    std::string pattern;
    for (const std::string& line : expected) {
        for (char c : line) {
            if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) {
                pattern += '\\';
            }
            pattern += c;
        }
        pattern += '\n';
    }
    return pattern + "$";
}

void PlixLoadedConfig::stdoutToStderr()
{
    std::fflush(stdout);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

void PlixLoadedConfig::load(const std::string& body)
{
    loadFile(dir.write("config.xml", document(body)));
}

void PlixLoadedConfig::loadFile(const std::string& xmlPath)
{
    parser =
        std::make_unique<PlixXML_Parser>(xmlPath, "not_created_yet", &values, &json, &dataSets);
}

std::string PlixLoadedConfig::loadCapturing(const std::string& body)
{
    testing::internal::CaptureStdout();
    load(body);
    return testing::internal::GetCapturedStdout();
}

void PlixLoadedConfig::readAll()
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

PlixDataSet& PlixLoadedConfig::dataSet(const std::string& name)
{
    for (PlixDataSet* dataSet : dataSets) {
        if (dataSet->getName() == name) {
            return *dataSet;
        }
    }
    throw std::out_of_range("no data set " + name);
}
