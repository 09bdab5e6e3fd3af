#pragma once

#include <glib.h>

#include <string>
#include <vector>

// Writes a benchmark configuration into a directory: plix_config.xml and one
// JSON store file per entry of the file sizes. Each file holds data sets of
// at most 20 values named ds<n> (numbered across all files), each value named
// v<i> with its type chosen by i: int, string, bool, double in turn. A few
// ints carry a MinMaxValidator and a few strings a StringLengthValidator.
// ds0/v0 is an int without validator or action, ds0/v1 the only password
// value ("password,sha256,1000", plain text passwordPlainText()).
class PlixBenchConfig
{
public:
    static constexpr int valuesPerDataSet = 20;
    static constexpr int valuesPerFile = 1000;

    explicit PlixBenchConfig(std::string directory);

    // Writes every file; false (with a message on standard error) when one
    // cannot be written.
    bool write(const std::vector<int>& fileSizes);

    std::string xmlPath() const;
    // The XML-ID of the first int value of each file, in file order.
    const std::vector<std::string>& firstIntOfEachFile() const { return firstInts; }
    // The XML-IDs of the first count int values, five per data set; the
    // configuration must have count / 5 data sets. Every value from 0 to
    // 999 passes their validators.
    static std::vector<std::string> intIds(int count);
    // The XML-IDs of the first count values from ds1 on, all four types in
    // turn and never the password; the configuration must have
    // count / 20 + 2 data sets.
    static std::vector<std::string> mixedIds(int count);
    // The XML-IDs v0 to v<count - 1> of one data set, all four types in turn;
    // the data set must not be ds0, which holds the password.
    static std::vector<std::string> dataSetIds(const std::string& dataSet, int count);
    // The a{sv} changes of an Apply that sets the values named in round
    // `round`: each an int when allInts, else of the type its position in the
    // list gives (int, string, bool, double in turn, as in a data set). Every
    // value passes its validators and differs from the one of the round before.
    static GVariant* changesOf(const std::vector<std::string>& ids, int round, bool allInts);

    static std::vector<int> splitIntoFiles(int values);
    static const char* passwordPlainText() { return "bench-secret"; }
    static const char* passwordType() { return "password,sha256,1000"; }

private:
    void appendDataSet(int fileIndex, int count, std::string& xml, std::string& json);
    void appendValue(int index, std::string& xml, std::string& json);
    bool writeFile(const std::string& path, const std::string& text) const;
    std::string jsonPath(int fileIndex) const;

    std::string directory;
    std::string storedPassword;
    int dataSets = 0;
    std::vector<std::string> firstInts;
};
