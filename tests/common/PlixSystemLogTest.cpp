#include "PlixSystemLog.h"
#include "PlixTestLogger.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <syslog.h>

using namespace std::chrono_literals;

namespace {
// Long enough that a message that waited for it cannot go unnoticed.
constexpr auto patience = 300ms;

std::string write(PlixSystemLog& log, int priority, const std::string& text)
{
    return log.write(priority, text.data(), text.size());
}

// The text after the header of a message.
std::string textOf(const std::string& message)
{
    const std::size_t colon = message.find(": ");
    return colon == std::string::npos ? message : message.substr(colon + 2);
}

// More messages than a logger's queue holds (the kernel's default is 10).
constexpr int fillers = 1000;

// Writes more than a logger that does not read can queue; returns how many
// were not queued.
int overfill(PlixSystemLog& log, const PlixTestLogger& logger)
{
    for (int message = 0; message < fillers; ++message) {
        write(log, LOG_INFO, "filler");
    }
    return fillers - logger.drain();
}
} // namespace

TEST(PlixSystemLog, AReadingLoggerGetsEveryMessageWithItsPriority)
{
    PlixTestLogDir dir;
    PlixTestLogger logger(dir.file("log"));
    PlixSystemLog log(dir.file("log"), patience);
    for (int message = 0; message < 100; ++message) {
        EXPECT_EQ(write(log, LOG_ERR, "message " + std::to_string(message)), "");
        const std::string received = logger.receive();
        EXPECT_EQ(received.substr(0, 4), "<11>");
        EXPECT_EQ(textOf(received), "message " + std::to_string(message));
    }
}

TEST(PlixSystemLog, AFullQueueIsWaitedForOnceAndThenMessagesAreDroppedWithoutAWait)
{
    PlixTestLogDir dir;
    PlixTestLogger logger(dir.file("log"));
    PlixSystemLog log(dir.file("log"), patience);
    for (int message = 0; message < fillers; ++message) {
        write(log, LOG_INFO, "filler");
    }
    const auto before = std::chrono::steady_clock::now();
    for (int message = 0; message < 200; ++message) {
        EXPECT_EQ(write(log, LOG_INFO, "dropped"), "");
    }
    EXPECT_LT(std::chrono::steady_clock::now() - before, patience);
}

TEST(PlixSystemLog, AResumedLoggerGetsTheCountOfDroppedMessagesAndThenEveryMessage)
{
    PlixTestLogDir dir;
    PlixTestLogger logger(dir.file("log"));
    PlixSystemLog log(dir.file("log"), patience);
    const std::string expected =
        std::to_string(overfill(log, logger)) + " messages were not taken by the system log";
    EXPECT_EQ(write(log, LOG_ERR, "after"), expected);
    const std::string notice = logger.receive();
    EXPECT_EQ(notice.substr(0, 4), "<13>");
    EXPECT_EQ(textOf(notice), expected);
    EXPECT_EQ(textOf(logger.receive()), "after");
    EXPECT_EQ(write(log, LOG_ERR, "later"), "");
    EXPECT_EQ(textOf(logger.receive()), "later");
}

TEST(PlixSystemLog, NoLoggerCountsNoDroppedMessages)
{
    PlixTestLogDir dir;
    PlixSystemLog log(dir.file("log"), patience);
    EXPECT_EQ(write(log, LOG_INFO, "nobody"), "");
    PlixTestLogger logger(dir.file("log"));
    EXPECT_EQ(write(log, LOG_INFO, "somebody"), "");
    EXPECT_EQ(textOf(logger.receive()), "somebody");
}
