#pragma once

#include "PlixBusClient.h"
#include "PlixServiceProcess.h"
#include "PlixTestBus.h"
#include "PlixTestDir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

// Base of every integration test: a fresh directory, a private system bus,
// the test configuration and as many service instances and clients as the
// test starts. Everything is torn down at the end of the test, services
// before the bus; each service is stopped with SIGTERM and must end with
// status 0 and without a sanitizer report. Without the rights to create
// namespaces the tests are skipped with the reason.
class PlixIntegrationTest : public testing::Test
{
protected:
    static constexpr std::chrono::seconds kStartBound{15};
    static constexpr std::chrono::seconds kExitBound{15};
    // The orderly stop at the end of each test; under a sanitizer the exit
    // includes the leak check.
    static constexpr std::chrono::seconds kStopBound{30};

    void SetUp() override;
    void TearDown() override;

    PlixTestDir& dir() { return *mDir; }
    PlixTestBus& bus() { return *mBus; }

    // Copies the test configuration (XML and JSON store) into the test
    // directory with its paths pointing there; returns the XML's path.
    std::string writeConfig();
    // Writes an XML text of the test's own, "@DIR@" standing for the test
    // directory; returns its path.
    std::string writeXml(const std::string& name, const std::string& text);
    // The test configuration with its store named "etc/store.json", which
    // the test makes a link; what the store holds is in "data/store.json".
    // Returns the XML's path.
    std::string writeLinkedConfig();

    // The variables the service runs with: the private bus, the fake
    // killall first in PATH, predictable system error texts.
    std::map<std::string, std::string> serviceEnvironment() const;
    PlixServiceProcess& start(const std::vector<std::string>& args,
                              const std::map<std::string, std::string>& extraEnv = {},
                              const std::string& name = "service");
    PlixServiceProcess& startInside(PlixServiceProcess& host, const std::vector<std::string>& args,
                                    const std::string& name);
    // Waits until the service owns its name and answers on /plix.
    bool waitServing(PlixServiceProcess& service);
    // Starts the service on the test configuration (plus args) and waits
    // until it serves; null (and a recorded failure) when it does not.
    PlixServiceProcess* startServing(const std::vector<std::string>& args = {},
                                     const std::map<std::string, std::string>& extraEnv = {});

    PlixBusClient& newClient();
    // The process id, seen from outside, of the connection owning the name.
    pid_t servicePid() const;

    std::string fileText(const std::string& name) const;
    std::string killallLog() const { return fileText("killall.log"); }

    static std::string tail(const PlixServiceProcess& service);
    // The id that a process of this machine has inside its own PID namespace.
    static pid_t namespacePidOf(pid_t pid);

private:
    static const std::string& reasonToSkip();
    std::string withTestDir(std::string text) const;

    std::unique_ptr<PlixTestDir> mDir;
    std::unique_ptr<PlixTestBus> mBus;
    std::vector<std::unique_ptr<PlixServiceProcess>> mServices;
    std::vector<std::unique_ptr<PlixBusClient>> mClients;
};
