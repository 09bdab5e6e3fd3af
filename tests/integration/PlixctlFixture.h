#pragma once

#include "PlixChildProcess.h"
#include "PlixOutputLines.h"
#include "PlixServingTest.h"
#include "PlixWait.h"

#include <csignal>
#include <filesystem>

#ifndef PLIXCTL_BINARY
#error "PLIXCTL_BINARY must be defined by the build"
#endif

namespace plixctltest {
constexpr std::chrono::seconds kRunBound{20};

struct PlixctlRun
{
    int status;
    std::string out;
    std::string err;
};
} // namespace plixctltest

// plixctl against the real service on the test's private bus.
class Plixctl : public PlixServingTest
{
protected:
    std::vector<std::string> command(const std::vector<std::string>& args)
    {
        std::vector<std::string> argv{PLIXCTL_BINARY, "--address", bus().address()};
        argv.insert(argv.end(), args.begin(), args.end());
        return argv;
    }

    plixctltest::PlixctlRun run(const std::vector<std::string>& args)
    {
        return finish(command(args));
    }

    // Runs plixctl with the text on its standard input.
    plixctltest::PlixctlRun runWithInput(const std::vector<std::string>& args,
                                         const std::string& input)
    {
        dir().write("ctl.in", input);
        std::string line = "exec";
        for (const std::string& arg : command(args)) {
            line += " '" + arg + "'";
        }
        return finish({"/bin/sh", "-c", line + " < '" + dir().file("ctl.in") + "'"});
    }

    std::unique_ptr<PlixChildProcess> startMonitor(const std::vector<std::string>& args)
    {
        auto monitor = std::make_unique<PlixChildProcess>(
            command(args), std::map<std::string, std::string>{}, dir().file("monitor.out"),
            dir().file("monitor.err"));
        EXPECT_TRUE(plixWaitUntil(
            [&] { return fileText("monitor.err").find("monitoring") != std::string::npos; },
            plixctltest::kRunBound));
        return monitor;
    }

    // A directory where the store file was makes every write of it fail;
    // returns the file's path.
    std::string blockStoreFile()
    {
        const std::string store = dir().file("store.json");
        std::filesystem::remove(store);
        std::filesystem::create_directory(store);
        return store;
    }

    bool waitMonitorOutput(const std::string& expected)
    {
        return plixWaitUntil([&] { return fileText("monitor.out") == expected; },
                             plixctltest::kRunBound);
    }

private:
    plixctltest::PlixctlRun finish(const std::vector<std::string>& argv)
    {
        PlixChildProcess ctl(argv, {}, dir().file("ctl.out"), dir().file("ctl.err"));
        const auto status = ctl.waitExit(plixctltest::kRunBound);
        EXPECT_TRUE(status.has_value()) << "plixctl did not end";
        return {status.value_or(-1), fileText("ctl.out"), fileText("ctl.err")};
    }
};
