#pragma once

#include "Plix.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

// A fresh engine per test, configured from files written into a fresh
// temporary directory. The directory also holds a fake "killall" placed first
// in PATH, so that network actions never touch the machine's DHCP client, and
// the log that the Execute actions of the test configuration append to.
class PlixEngineFixture : public ::testing::Test
{
protected:
    // The test configuration: store files "main" (read_write) and "fixed"
    // (read_only); data sets a, ports, prio, fixed, defaults and link.
    static const char* const testXml;
    static const char* const testMainJson;
    static const char* const testFixedJson;
    // Plain text of the stored form of a/pw.
    static constexpr const char* storedPasswordPlainText = "secret";

    void SetUp() override;
    void TearDown() override;

    std::string path(const std::string& name) const;
    // Writes a file into the temporary directory; "DIR" in the text becomes
    // the directory's path.
    void writeFile(const std::string& name, const std::string& text) const;
    std::string readFile(const std::string& name) const;
    bool exists(const std::string& name) const;
    nlohmann::ordered_json readJson(const std::string& name) const;

    // Writes the test configuration and configures a new engine with
    // "-c DIR/plix.xml" followed by the extra options.
    void configureTestEngine(const std::vector<std::string>& extraOptions = {});
    // Configures the engine with exactly these arguments behind the program
    // name.
    void configureWith(const std::vector<std::string>& arguments);

    // Lines that the Execute actions of the test configuration appended.
    std::vector<std::string> actionLog() const;

    // Captures standard output around a call and returns its lines.
    template <typename Call>
    std::vector<std::string> outputOf(Call call)
    {
        ::testing::internal::CaptureStdout();
        call();
        return splitLines(::testing::internal::GetCapturedStdout());
    }

    // Iterates the default main context for the given time; every wait of
    // these tests is bounded by it.
    static void runMainLoopFor(int milliseconds);
    // Runs the main loop until the condition holds or the bound passes;
    // whether it held.
    static bool runMainLoopUntil(const std::function<bool()>& condition, int boundMilliseconds);

    static std::vector<std::string> splitLines(const std::string& text);

    std::unique_ptr<Plix> engine;
    std::string dir;

private:
    std::string savedPath;
    std::vector<std::string> argumentStore;
    std::vector<char*> argumentPointers;
};
