// Writes one benchmark configuration and prints the XML-ID of the first int
// value of each of its store files, one a line.
//
//   plix_bench_gen DIRECTORY values N      N values in files of 1,000
//   plix_bench_gen DIRECTORY files A,B,... one file of each size

#include "PlixBenchConfig.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {
std::vector<int> parseSizes(const std::string& mode, const std::string& argument)
{
    if (mode == "values") {
        return PlixBenchConfig::splitIntoFiles(std::atoi(argument.c_str()));
    }
    std::vector<int> sizes;
    std::stringstream list(argument);
    for (std::string item; std::getline(list, item, ',');) {
        sizes.push_back(std::atoi(item.c_str()));
    }
    return sizes;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 4 || (std::string(argv[2]) != "values" && std::string(argv[2]) != "files")) {
        std::fprintf(stderr, "usage: %s DIRECTORY values N | files A,B,...\n", argv[0]);
        return 2;
    }
    PlixBenchConfig config(argv[1]);
    const std::vector<int> sizes = parseSizes(argv[2], argv[3]);
    if (sizes.empty() || !config.write(sizes)) {
        return 1;
    }
    for (const std::string& id : config.firstIntOfEachFile()) {
        std::printf("%s\n", id.c_str());
    }
    return 0;
}
