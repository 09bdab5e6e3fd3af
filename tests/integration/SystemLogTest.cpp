#include "PlixIntegrationTest.h"
#include "PlixOutputLines.h"
#include "PlixTestSyslog.h"
#include "PlixWait.h"

#include <sys/stat.h>

#include <algorithm>
#include <memory>

using namespace std::chrono_literals;

namespace {
constexpr auto kLoggerBound = 30s;
constexpr const char* kIdent = "dbus-ex-plix";

// The syslog priority (user facility) a line's tag stands for; warnings and
// notices share a tag.
bool priorityMatchesTag(int priority, const std::string& tag)
{
    const int level = priority - 8;
    if (tag == "[ERR] ") {
        return level <= 3;
    }
    if (tag == "[NOT] ") {
        return level == 4 || level == 5;
    }
    return tag == (level == 6 ? "[NFO] " : "[DEB] ") && level >= 6 && level <= 7;
}

// The lines of standard output, tag and text, as the system log must show
// them: each message parsed, its priority that of the line's tag.
std::vector<std::string> asOutputLines(const std::vector<std::string>& messages)
{
    std::vector<std::string> lines;
    for (const std::string& message : messages) {
        const PlixSyslogMessage parsed = plixParseSyslog(message);
        const std::string tags[] = {"[ERR] ", "[NOT] ", "[NFO] ", "[DEB] "};
        const auto tag = std::find_if(std::begin(tags), std::end(tags), [&](const auto& tag) {
            return priorityMatchesTag(parsed.priority, tag);
        });
        const bool wellFormed = parsed.ident == kIdent && tag != std::end(tags);
        lines.push_back(wellFormed ? *tag + parsed.text : "malformed: " + message);
    }
    return lines;
}

std::vector<std::string> linesFrom(const std::vector<std::string>& lines, std::size_t first)
{
    return {lines.begin() + static_cast<std::ptrdiff_t>(std::min(first, lines.size())),
            lines.end()};
}
} // namespace

// The service runs with a /dev of its own, where the test makes its logger.
class SystemLog : public PlixIntegrationTest
{
protected:
    // Starts the service; with a link target, /dev/log is a link to it.
    bool startService(const std::string& linkTarget = {})
    {
        std::map<std::string, std::string> env{{"PLIX_TEST_PRIVATE_DEV", "yes"}};
        if (!linkTarget.empty()) {
            env["PLIX_TEST_DEV_LOG_LINK"] = linkTarget;
        }
        mService = startServing({}, env);
        if (mService == nullptr) {
            return false;
        }
        mClient = &newClient();
        return true;
    }

    // The service's /dev/log seen from the test; empty, and a failure, if
    // that /dev is the machine's own (nothing may be made there).
    std::string deviceLogPath()
    {
        const std::string dev = mService->namespaceRoot() + "/dev";
        struct stat own
        {
        };
        struct stat machine
        {
        };
        const bool privateDev = stat(dev.c_str(), &own) == 0 && stat("/dev", &machine) == 0 &&
                                own.st_dev != machine.st_dev;
        EXPECT_TRUE(privateDev) << dev << " is not a private /dev";
        return privateDev ? dev + "/log" : std::string();
    }

    // Makes the logger at path, at a moment the service is idle, and notes
    // how many lines were written before it.
    std::unique_ptr<PlixTestSyslog> makeLogger(const std::string& path)
    {
        mLinesBefore = mService->stdoutLines().size();
        auto logger = std::make_unique<PlixTestSyslog>(path);
        EXPECT_TRUE(logger->valid()) << "cannot bind " << path;
        return logger;
    }

    // One call that logs; its lines are written before it is answered.
    void logSomething(int value) { EXPECT_EQ(mClient->setIntTransient("general/count", value), 0); }

    // A persistent commit of one value; false when it is not answered in
    // time or not with 0.
    bool commit(int value)
    {
        const auto start = std::chrono::steady_clock::now();
        const bool done = mClient->transactionStart(true) == 0 &&
                          mClient->setInt("general/count", value) == 0 &&
                          mClient->transactionStop() == 0;
        return done && std::chrono::steady_clock::now() - start < kCommitBound;
    }

    // The log lines written since the logger was made (trace lines go to
    // standard output only).
    std::vector<std::string> linesSinceLogger() const
    {
        std::vector<std::string> logLines;
        for (const std::string& line : linesFrom(mService->stdoutLines(), mLinesBefore)) {
            if (line.size() > 6 && line[0] == '[' && line.compare(4, 2, "] ") == 0) {
                logLines.push_back(line);
            }
        }
        return logLines;
    }

    // Waits until the logger has collected as many messages as lines were
    // written since it was made, and compares them.
    void expectEveryLineSinceTheLogger(const PlixTestSyslog& logger)
    {
        const auto lines = linesSinceLogger();
        ASSERT_FALSE(lines.empty());
        EXPECT_TRUE(logger.waitForMessages(lines.size(), kLoggerBound));
        EXPECT_EQ(asOutputLines(logger.messages()), lines);
    }

    // Far beyond a commit's usual time, far below the client's time-out.
    static constexpr auto kCommitBound = 5s;

    PlixServiceProcess* mService = nullptr;
    PlixBusClient* mClient = nullptr;
    std::size_t mLinesBefore = 0;
};

TEST_F(SystemLog, ASocketMadeInDevAfterTheStartGetsEveryLaterLine)
{
    ASSERT_TRUE(startService());
    const std::string path = deviceLogPath();
    ASSERT_FALSE(path.empty());
    logSomething(1);
    auto logger = makeLogger(path);
    logger->startReading();
    for (int value = 2; value < 12; ++value) {
        logSomething(value);
    }
    expectEveryLineSinceTheLogger(*logger);
}

TEST_F(SystemLog, ASocketBehindALinkWhoseTargetAppearsLaterGetsEveryLaterLine)
{
    const std::string journal = dir().file("journal");
    ASSERT_TRUE(startService(journal + "/socket"));
    logSomething(1);
    ASSERT_EQ(mkdir(journal.c_str(), 0755), 0);
    auto logger = makeLogger(journal + "/socket");
    logger->startReading();
    for (int value = 2; value < 12; ++value) {
        logSomething(value);
    }
    expectEveryLineSinceTheLogger(*logger);
}

TEST_F(SystemLog, ALoggerThatNeverReadsLeavesEveryCommitAnsweredInTime)
{
    ASSERT_TRUE(startService());
    const std::string path = deviceLogPath();
    ASSERT_FALSE(path.empty());
    auto logger = makeLogger(path);
    for (int commits = 0; commits < 200; ++commits) {
        ASSERT_TRUE(commit(commits % 1000)) << "commit " << commits;
    }
}

TEST_F(SystemLog, AStalledLoggerThatReadsAgainGetsTheDroppedCountThenEveryLaterLine)
{
    ASSERT_TRUE(startService());
    const std::string path = deviceLogPath();
    ASSERT_FALSE(path.empty());
    auto logger = makeLogger(path);
    for (int commits = 0; commits < 20; ++commits) {
        ASSERT_TRUE(commit(commits));
    }
    logger->startReading();
    const std::string countLine = " messages were not taken by the system log";
    int value = 100;
    ASSERT_TRUE(plixWaitUntil(
        [&] {
            logSomething(++value);
            return plixAnyLineContains(linesSinceLogger(), countLine);
        },
        kLoggerBound));
    logSomething(++value);
    const auto lines = linesSinceLogger();
    const auto notice = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.find(countLine) != std::string::npos;
    });
    ASSERT_EQ(plixCountLines(lines, *notice), 1);
    // The logger takes what its queue held before the notice, so the notice
    // may still be on its way when the first of those is in.
    std::vector<std::string> received;
    ASSERT_TRUE(plixWaitUntil(
        [&] {
            received = asOutputLines(logger->messages());
            return std::find(received.begin(), received.end(), *notice) != received.end();
        },
        kLoggerBound));
    const auto noticeReceived = std::find(received.begin(), received.end(), *notice);
    // Before the notice: the lines the logger's queue took; after it, every
    // line; the count: every line in between.
    const auto queued = noticeReceived - received.begin();
    const auto dropped = (notice - lines.begin()) - queued;
    EXPECT_EQ(*notice, "[NOT] " + std::to_string(dropped) + countLine);
    EXPECT_EQ(std::vector<std::string>(received.begin(), noticeReceived),
              std::vector<std::string>(lines.begin(), lines.begin() + queued));
    EXPECT_TRUE(logger->waitForMessages(static_cast<std::size_t>(queued) +
                                            static_cast<std::size_t>(lines.end() - notice),
                                        kLoggerBound));
    EXPECT_EQ(linesFrom(asOutputLines(logger->messages()), static_cast<std::size_t>(queued)),
              std::vector<std::string>(notice, lines.end()));
}

TEST_F(SystemLog, AReadingLoggerLosesNothingOverTenThousandMessages)
{
    ASSERT_TRUE(startService());
    const std::string path = deviceLogPath();
    ASSERT_FALSE(path.empty());
    auto logger = makeLogger(path);
    logger->startReading();
    // Each call's lines are taken before the next call, so the logger never
    // falls behind by more than its queue holds, however loaded the machine.
    int value = 0;
    while (linesSinceLogger().size() < 10000) {
        for (int call = 0; call < 100; ++call) {
            logSomething(++value % 1000);
            ASSERT_TRUE(plixWaitUntil([&] { return logger->caughtUp(); }, kLoggerBound, 1ms));
        }
    }
    expectEveryLineSinceTheLogger(*logger);
}
