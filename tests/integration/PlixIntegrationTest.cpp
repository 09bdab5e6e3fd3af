#include "PlixIntegrationTest.h"

#include "PlixTestPaths.h"
#include "PlixWait.h"

#include <filesystem>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace {
const char* const kConfigFiles[] = {"plix_test.xml", "store.json", "fixed.json", "network.json"};

std::string probeNamespaces()
{
    if (geteuid() != 0) {
        return "the integration tests need root: they run the service in private mount, IPC "
               "and PID namespaces (unshare) with its own lock directory bind-mounted";
    }
    if (access(PLIX_SERVICE_BINARY, X_OK) != 0) {
        return std::string("the service is not built: ") + PLIX_SERVICE_BINARY;
    }
    PlixTestDir probe;
    PlixChildProcess trial({PLIX_UNSHARE, "--mount", "--ipc", "--pid", "--fork", "--mount-proc",
                            "--propagation", "private", "--", "/bin/true"},
                           {}, probe.file("out"), probe.file("err"));
    if (trial.waitExit(std::chrono::seconds(10)) != 0) {
        return "creating namespaces with unshare is not permitted here: " +
               PlixTestDir::readFile(probe.file("err"));
    }
    return "";
}
} // namespace

const std::string& PlixIntegrationTest::reasonToSkip()
{
    static const std::string reason = probeNamespaces();
    return reason;
}

void PlixIntegrationTest::SetUp()
{
    if (!reasonToSkip().empty()) {
        GTEST_SKIP() << reasonToSkip();
    }
    mDir = std::make_unique<PlixTestDir>();
    mDir->makeDirectory("bin");
    // Stands in for the real killall, which the network action runs: the
    // test's processes are recorded, nothing is killed.
    mDir->writeExecutable("bin/killall", "#!/bin/sh\necho \"killall $*\" >> \"" +
                                             mDir->file("killall.log") + "\"\n");
    mBus = std::make_unique<PlixTestBus>(*mDir, PLIX_BUS_CONFIG);
}

void PlixIntegrationTest::TearDown()
{
    mClients.clear();
    // Stopped as the device's init system stops the service, so that its
    // orderly end, its memory at exit and its last errors are checked too.
    for (const auto& service : mServices) {
        const std::string problems = service->stop(kStopBound);
        if (!problems.empty()) {
            ADD_FAILURE() << "stopping the service with SIGTERM:\n"
                          << problems << "--- its standard error:\n"
                          << service->stderrText();
        }
    }
    mServices.clear();
    mBus.reset();
    if (mDir && HasFailure()) {
        mDir->keep();
    }
    mDir.reset();
}

std::string PlixIntegrationTest::withTestDir(std::string text) const
{
    const std::string placeholder = "@DIR@";
    for (auto at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + mDir->path().size())) {
        text.replace(at, placeholder.size(), mDir->path());
    }
    return text;
}

std::string PlixIntegrationTest::writeConfig()
{
    for (const char* name : kConfigFiles) {
        mDir->write(
            name, withTestDir(PlixTestDir::readFile(std::string(PLIX_TEST_DATA_DIR) + "/" + name)));
    }
    return mDir->file(kConfigFiles[0]);
}

std::string PlixIntegrationTest::writeXml(const std::string& name, const std::string& text)
{
    return mDir->write(name, withTestDir(text));
}

std::string PlixIntegrationTest::writeLinkedConfig()
{
    writeConfig();
    mDir->makeDirectory("etc");
    mDir->makeDirectory("data");
    std::filesystem::rename(mDir->file("store.json"), mDir->file("data/store.json"));
    std::string xml = PlixTestDir::readFile(std::string(PLIX_TEST_DATA_DIR) + "/plix_test.xml");
    const std::string store = "@DIR@/store.json";
    xml.replace(xml.find(store), store.size(), "@DIR@/etc/store.json");
    return writeXml("linked.xml", xml);
}

std::map<std::string, std::string> PlixIntegrationTest::serviceEnvironment() const
{
    const char* path = std::getenv("PATH");
    return {{"DBUS_SYSTEM_BUS_ADDRESS", mBus->address()},
            {"DBUS_SESSION_BUS_ADDRESS", ""},
            {"PATH", mDir->file("bin") + ":" + (path != nullptr ? path : "/usr/bin:/bin")},
            {"LC_ALL", "C"},
            {"LANG", "C"}};
}

PlixServiceProcess& PlixIntegrationTest::start(const std::vector<std::string>& args,
                                               const std::map<std::string, std::string>& extraEnv,
                                               const std::string& name)
{
    auto env = serviceEnvironment();
    for (const auto& [key, value] : extraEnv) {
        env[key] = value;
    }
    mServices.push_back(std::make_unique<PlixServiceProcess>(*mDir, name, args, env));
    return *mServices.back();
}

PlixServiceProcess& PlixIntegrationTest::startInside(PlixServiceProcess& host,
                                                     const std::vector<std::string>& args,
                                                     const std::string& name)
{
    mServices.push_back(
        std::make_unique<PlixServiceProcess>(*mDir, name, args, serviceEnvironment(), host));
    return *mServices.back();
}

bool PlixIntegrationTest::waitServing(PlixServiceProcess& service)
{
    const auto end = std::chrono::steady_clock::now() + kStartBound;
    const auto left = [&] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
    };
    if (!plixWaitUntil(
            [&] {
                return !mBus->nameOwner(PlixBusClient::kServiceName).empty() || !service.running();
            },
            left()) ||
        mBus->nameOwner(PlixBusClient::kServiceName).empty()) {
        return false;
    }
    // The name is owned a moment before /plix is exported; a call in between
    // is refused with an error, so probe until a real reply comes.
    return plixWaitUntil(
        [&] {
            return mBus->admin()
                       .callAdaptor("GetIntValueTransient", g_variant_new("(s)", "probe/none"))
                       .get() != nullptr;
        },
        left(), std::chrono::milliseconds(20));
}

PlixServiceProcess*
PlixIntegrationTest::startServing(const std::vector<std::string>& args,
                                  const std::map<std::string, std::string>& extraEnv)
{
    std::vector<std::string> all{"-c", writeConfig()};
    all.insert(all.end(), args.begin(), args.end());
    PlixServiceProcess& service = start(all, extraEnv);
    if (!waitServing(service)) {
        ADD_FAILURE() << "the service does not serve; its output:\n" << tail(service);
        return nullptr;
    }
    return &service;
}

PlixBusClient& PlixIntegrationTest::newClient()
{
    mClients.push_back(std::make_unique<PlixBusClient>(mBus->address()));
    return *mClients.back();
}

pid_t PlixIntegrationTest::servicePid() const
{
    return mBus->processIdOf(mBus->nameOwner(PlixBusClient::kServiceName));
}

std::string PlixIntegrationTest::fileText(const std::string& name) const
{
    return PlixTestDir::readFile(mDir->file(name));
}

std::string PlixIntegrationTest::tail(const PlixServiceProcess& service)
{
    return service.stdoutText() + "--- stderr:\n" + service.stderrText();
}

pid_t PlixIntegrationTest::namespacePidOf(pid_t pid)
{
    return PlixServiceProcess::namespacePidOf(pid);
}
