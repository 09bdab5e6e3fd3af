#include "PlixEngineFixture.h"

#include <glib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

const char* const PlixEngineFixture::testXml = R"(<?xml version="1.0"?>
<plix>
    <Panel_file name="main" type="read_write">DIR/main.json</Panel_file>
    <Panel_file name="fixed" type="read_only">DIR/fixed.json</Panel_file>
    <DataSet ID="a">
        <File>main</File>
        <onChange type="Execute" command="echo dataset-a >> DIR/actions.log &amp;&amp; test ! -e DIR/fail-dataset-a"/>
        <onChange type="Execute" command="echo dataset-a-boot >> DIR/actions.log" triggerOnlyAtPlixBoot="true"/>
        <Value name="i" type="int">
            <jpath>a.i</jpath>
            <validation type="MinMaxValidator" min="0" max="100"/>
            <onChange type="Execute" command="echo value-i %i >> DIR/actions.log &amp;&amp; test ! -e DIR/fail-value-i"/>
            <onChange type="Execute" command="echo value-i-boot >> DIR/actions.log" triggerOnlyAtPlixBoot="true"/>
        </Value>
        <Value name="d" type="double"><jpath>a.d</jpath></Value>
        <Value name="s" type="string">
            <jpath>a.s</jpath>
            <onChange type="Execute" command="echo value-s %s >> DIR/actions.log" triggerOnPlixStart="false"/>
        </Value>
        <Value name="b" type="bool"><jpath>a.b</jpath></Value>
        <Value name="pw" type="password,sha256,2"><jpath>a.pw</jpath></Value>
        <Value name="n" type="int"><jpath>a.n</jpath></Value>
    </DataSet>
    <DataSet ID="ports">
        <File>main</File>
        <validation type="DataSetPortValidator"/>
        <onChange type="Execute" command="echo dataset-ports >> DIR/actions.log"/>
        <Value name="mainport" type="int"><jpath>ports.mainport</jpath></Value>
        <Value name="displayport" type="int"><jpath>ports.displayport</jpath></Value>
        <Value name="httpport" type="int"><jpath>ports.httpport</jpath></Value>
    </DataSet>
    <DataSet ID="prio">
        <File>main</File>
        <validation type="ConnectionpriorityValidator"/>
        <Value name="disconnectexistconnections" type="bool"><jpath>prio.disconnectexistconnections</jpath></Value>
        <Value name="sharedsessions" type="bool"><jpath>prio.sharedsessions</jpath></Value>
        <Value name="refuseconcurrentconnections" type="bool"><jpath>prio.refuseconcurrentconnections</jpath></Value>
    </DataSet>
    <DataSet ID="fixed">
        <File>fixed</File>
        <Value name="serial" type="string"><jpath>fixed.serial</jpath></Value>
    </DataSet>
    <DataSet ID="defaults">
        <File>main</File>
        <Value name="limit" type="int" default="7"/>
    </DataSet>
    <DataSet ID="link">
        <File>main</File>
        <Value name="copy" type="int"><jpath>a.i</jpath></Value>
    </DataSet>
</plix>
)";

const char* const PlixEngineFixture::testMainJson = R"({
    "a": {
        "i": 5,
        "d": 2.5,
        "s": "hello",
        "b": true,
        "pw": "1d644fd2ceb8954a8506d9e749faf96c7386d178b0925a2dd485371f8a5df2456e67696e655465737453616c74466f7250617373776f726456616c7565",
        "n": 1
    },
    "ports": {
        "mainport": 102,
        "displayport": 103,
        "httpport": 80
    },
    "prio": {
        "disconnectexistconnections": false,
        "sharedsessions": true,
        "refuseconcurrentconnections": false
    }
}
)";

const char* const PlixEngineFixture::testFixedJson = R"({
    "fixed": {
        "serial": "SN-1"
    }
}
)";

void PlixEngineFixture::SetUp()
{
    char pattern[] = "/tmp/plix-engine-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir = pattern;
    ASSERT_EQ(mkdir(path("bin").c_str(), 0700), 0);
    writeFile("bin/killall", "#!/bin/sh\necho \"$@\" >> DIR/killall.log\nexit 0\n");
    ASSERT_EQ(chmod(path("bin/killall").c_str(), 0700), 0);
    const char* oldPath = std::getenv("PATH");
    savedPath = oldPath != nullptr ? oldPath : "/usr/bin:/bin";
    setenv("PATH", (path("bin") + ":" + savedPath).c_str(), 1);
}

void PlixEngineFixture::TearDown()
{
    engine.reset();
    setenv("PATH", savedPath.c_str(), 1);
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
}

std::string PlixEngineFixture::path(const std::string& name) const
{
    return dir + "/" + name;
}

void PlixEngineFixture::writeFile(const std::string& name, const std::string& text) const
{
    std::string expanded = text;
    for (std::size_t at = expanded.find("DIR"); at != std::string::npos;
         at = expanded.find("DIR", at + dir.size())) {
        expanded.replace(at, 3, dir);
    }
    std::ofstream(path(name), std::ios::binary) << expanded;
}

std::string PlixEngineFixture::readFile(const std::string& name) const
{
    std::ifstream in(path(name), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool PlixEngineFixture::exists(const std::string& name) const
{
    return access(path(name).c_str(), F_OK) == 0;
}

nlohmann::ordered_json PlixEngineFixture::readJson(const std::string& name) const
{
    return nlohmann::ordered_json::parse(readFile(name));
}

void PlixEngineFixture::configureTestEngine(const std::vector<std::string>& extraOptions)
{
    writeFile("plix.xml", testXml);
    writeFile("main.json", testMainJson);
    writeFile("fixed.json", testFixedJson);
    std::vector<std::string> arguments = {"-c", path("plix.xml")};
    arguments.insert(arguments.end(), extraOptions.begin(), extraOptions.end());
    configureWith(arguments);
}

void PlixEngineFixture::configureWith(const std::vector<std::string>& arguments)
{
    argumentStore = {"dbus-ex-plix"};
    argumentStore.insert(argumentStore.end(), arguments.begin(), arguments.end());
    argumentPointers.clear();
    for (std::string& argument : argumentStore) {
        argumentPointers.push_back(&argument[0]);
    }
    argumentPointers.push_back(nullptr);
    if (!engine) {
        engine = std::make_unique<Plix>();
    }
    engine->configure(static_cast<int>(argumentStore.size()), argumentPointers.data());
}

std::vector<std::string> PlixEngineFixture::actionLog() const
{
    return splitLines(readFile("actions.log"));
}

void PlixEngineFixture::runMainLoopFor(int milliseconds)
{
    const gint64 end = g_get_monotonic_time() + static_cast<gint64>(milliseconds) * 1000;
    while (g_get_monotonic_time() < end) {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
        g_usleep(10000);
    }
}

bool PlixEngineFixture::runMainLoopUntil(const std::function<bool()>& condition,
                                         int boundMilliseconds)
{
    const gint64 end = g_get_monotonic_time() + static_cast<gint64>(boundMilliseconds) * 1000;
    while (!condition() && g_get_monotonic_time() < end) {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
        g_usleep(10000);
    }
    return condition();
}

std::vector<std::string> PlixEngineFixture::splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}
