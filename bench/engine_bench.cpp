// In-process benchmarks of the engine without the bus: transient and
// transactional sets, the commit of one value into files of 10, 1,000 and
// 10,000 values, password verification, the XML load (with the JSON parse
// of its store files) and the read of every value from the JSON store.
//
//   engine_bench [--benchmark_... options]
//
// The engine logs every call to standard output; that goes to /dev/null so
// that only the benchmark's report is printed.

#include "Plix.h"
#include "PlixBenchConfig.h"
#include "PlixDataSet.h"
#include "PlixJsonModifier.h"
#include "PlixXML_Parser.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {
const char* const client = ":1.bench";

// The directory of this run's configurations, made once under /tmp.
const std::string& workDirectory()
{
    static const std::string directory = [] {
        char pattern[] = "/tmp/plix-engine-bench-XXXXXX";
        const char* made = mkdtemp(pattern);
        return std::string(made != nullptr ? made : "");
    }();
    return directory;
}

// Writes a configuration of the given file sizes into its own subdirectory.
PlixBenchConfig writeConfig(const std::string& name, const std::vector<int>& sizes)
{
    const std::string directory = workDirectory() + "/" + name;
    mkdir(directory.c_str(), 0700);
    PlixBenchConfig config(directory);
    if (!config.write(sizes)) {
        std::abort();
    }
    return config;
}

// The engine, configured once with files of 10, 1,000 and 10,000 values.
Plix* engine(std::vector<std::string>* firstInts = nullptr)
{
    static std::vector<std::string> ids;
    static Plix* plix = [] {
        PlixBenchConfig config = writeConfig("engine", {10, 1000, 10000});
        ids = config.firstIntOfEachFile();
        std::string path = config.xmlPath();
        std::vector<char*> argv{const_cast<char*>("engine_bench"), const_cast<char*>("-c"),
                                path.data(), nullptr};
        Plix::getInstance()->configure(3, argv.data());
        return Plix::getInstance();
    }();
    if (firstInts != nullptr) {
        *firstInts = ids;
    }
    return plix;
}

// A freshly loaded model: the engine's containers and the loader.
struct LoadedModel
{
    explicit LoadedModel(const std::string& xmlPath)
        : parser(std::make_unique<PlixXML_Parser>(xmlPath, "not_created_yet", &values, &json,
                                                  &dataSets))
    {
    }
    PlixXML_Parser::ValueTable values{11};
    PlixJsonModifier json;
    std::vector<PlixDataSet*> dataSets;
    std::unique_ptr<PlixXML_Parser> parser;
};

void transientSet(benchmark::State& state)
{
    Plix* plix = engine();
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plix->setIntValueTransient(client, "ds0/v0", ++i % 1000));
    }
}

void transactionalSet(benchmark::State& state)
{
    Plix* plix = engine();
    plix->transactionStart(client, false);
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plix->setIntValue(client, "ds0/v0", ++i % 1000));
    }
    plix->transactionStop(client);
}

void verifyPassword(benchmark::State& state)
{
    Plix* plix = engine();
    plix->transactionStart(client, false);
    const std::string plain = PlixBenchConfig::passwordPlainText();
    for (auto _ : state) {
        if (plix->verify(client, "ds0/v1", plain) != 0) {
            state.SkipWithError("verify did not match");
            break;
        }
    }
    plix->transactionStop(client);
}

// Start, one set and a persistent stop: the store file of the value is
// rewritten every time.
void persistentCommit(benchmark::State& state)
{
    std::vector<std::string> firstInts;
    Plix* plix = engine(&firstInts);
    const std::string id = firstInts.at(static_cast<std::size_t>(state.range(1)));
    int i = 0;
    for (auto _ : state) {
        plix->transactionStart(client, true);
        plix->setIntValue(client, id, ++i % 1000);
        if (plix->transactionStop(client) != 0) {
            state.SkipWithError("commit failed");
            break;
        }
    }
}

void xmlLoad(benchmark::State& state)
{
    const int values = static_cast<int>(state.range(0));
    const PlixBenchConfig config =
        writeConfig("load" + std::to_string(values), PlixBenchConfig::splitIntoFiles(values));
    for (auto _ : state) {
        LoadedModel model(config.xmlPath());
        benchmark::DoNotOptimize(model.values.size());
    }
    state.SetItemsProcessed(state.iterations() * values);
}

void jsonRead(benchmark::State& state)
{
    const int values = static_cast<int>(state.range(0));
    const PlixBenchConfig config =
        writeConfig("read" + std::to_string(values), PlixBenchConfig::splitIntoFiles(values));
    LoadedModel model(config.xmlPath());
    for (auto _ : state) {
        for (auto& entry : model.values) {
            model.json.get_value(&entry.second);
        }
    }
    state.SetItemsProcessed(state.iterations() * values);
}
} // namespace

BENCHMARK(transientSet);
BENCHMARK(transactionalSet);
BENCHMARK(verifyPassword)->Unit(benchmark::kMicrosecond);
// range(0): values in the file, range(1): the file's index in the engine's
// configuration.
BENCHMARK(persistentCommit)
    ->Args({10, 0})
    ->Args({1000, 1})
    ->Args({10000, 2})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(xmlLoad)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(jsonRead)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (workDirectory().empty()) {
        std::perror("mkdtemp");
        return 1;
    }
    // The report goes to the original standard output, the engine's log
    // lines to /dev/null.
    std::fflush(stdout);
    const int report = dup(STDOUT_FILENO);
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    close(null);
    // Appending: reopening a log file through /dev/fd would otherwise cut it.
    std::ofstream reportStream("/dev/fd/" + std::to_string(report), std::ios::app);
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    reporter.SetOutputStream(&reportStream);
    reporter.SetErrorStream(&reportStream);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    std::error_code ignored;
    std::filesystem::remove_all(workDirectory(), ignored);
    return 0;
}
