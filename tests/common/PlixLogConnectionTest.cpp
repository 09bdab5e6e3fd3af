#include "PlixLogConnection.h"
#include "PlixTestLogger.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {
// Sends "head" and "text" as two parts of one message.
PlixLogSend sendParts(PlixLogConnection& connection, const char* text)
{
    static char head[] = "<13>";
    const iovec parts[] = {{head, 4}, {const_cast<char*>(text), std::strlen(text)}};
    return connection.send(parts, 2);
}

// Sends until the logger's queue is full; false if it never fills.
bool fillQueue(PlixLogConnection& connection)
{
    for (int message = 0; message < 10000; ++message) {
        if (sendParts(connection, "filler") == PlixLogSend::busy) {
            return true;
        }
    }
    return false;
}
} // namespace

TEST(PlixLogConnection, WithoutALoggerAMessageIsAbsent)
{
    PlixTestLogDir dir;
    PlixLogConnection connection(dir.file("log"));
    EXPECT_EQ(sendParts(connection, "lost"), PlixLogSend::absent);
}

TEST(PlixLogConnection, TheMessageArrivesWholeInOneDatagram)
{
    PlixTestLogDir dir;
    PlixTestLogger logger(dir.file("log"));
    ASSERT_TRUE(logger.valid());
    PlixLogConnection connection(dir.file("log"));
    EXPECT_EQ(sendParts(connection, "hello"), PlixLogSend::sent);
    EXPECT_EQ(logger.receive(), "<13>hello");
}

TEST(PlixLogConnection, ALoggerBoundAfterTheFirstMessageGetsTheNext)
{
    PlixTestLogDir dir;
    PlixLogConnection connection(dir.file("log"));
    ASSERT_EQ(sendParts(connection, "before"), PlixLogSend::absent);
    PlixTestLogger logger(dir.file("log"));
    ASSERT_TRUE(logger.valid());
    EXPECT_EQ(sendParts(connection, "after"), PlixLogSend::sent);
    EXPECT_EQ(logger.receive(), "<13>after");
}

TEST(PlixLogConnection, ALoggerRestartedOnTheSamePathGetsTheNextMessage)
{
    PlixTestLogDir dir;
    PlixLogConnection connection(dir.file("log"));
    {
        PlixTestLogger first(dir.file("log"));
        ASSERT_EQ(sendParts(connection, "one"), PlixLogSend::sent);
        EXPECT_EQ(first.receive(), "<13>one");
    }
    unlink(dir.file("log").c_str());
    PlixTestLogger second(dir.file("log"));
    ASSERT_TRUE(second.valid());
    EXPECT_EQ(sendParts(connection, "two"), PlixLogSend::sent);
    EXPECT_EQ(second.receive(), "<13>two");
}

TEST(PlixLogConnection, ALoggerThatWentAwayAndCameBackThroughALinkGetsTheNextMessage)
{
    PlixTestLogDir dir;
    ASSERT_EQ(symlink(dir.file("journal/socket").c_str(), dir.file("log").c_str()), 0);
    ASSERT_EQ(mkdir(dir.file("journal").c_str(), 0700), 0);
    PlixLogConnection connection(dir.file("log"));
    {
        PlixTestLogger first(dir.file("journal/socket"));
        ASSERT_EQ(sendParts(connection, "one"), PlixLogSend::sent);
    }
    unlink(dir.file("journal/socket").c_str());
    rmdir(dir.file("journal").c_str());
    ASSERT_EQ(sendParts(connection, "gone"), PlixLogSend::absent);
    ASSERT_EQ(mkdir(dir.file("journal").c_str(), 0700), 0);
    PlixTestLogger second(dir.file("journal/socket"));
    ASSERT_TRUE(second.valid());
    EXPECT_EQ(sendParts(connection, "back"), PlixLogSend::sent);
    EXPECT_EQ(second.receive(), "<13>back");
}

TEST(PlixLogConnection, ALoggerThatDoesNotReadIsBusyWithoutAWait)
{
    PlixTestLogDir dir;
    PlixTestLogger logger(dir.file("log"));
    PlixLogConnection connection(dir.file("log"));
    ASSERT_TRUE(fillQueue(connection));
    EXPECT_FALSE(connection.waitForRoom(1ms));
    EXPECT_EQ(logger.receive(), "<13>filler");
    EXPECT_TRUE(connection.waitForRoom(5s));
    EXPECT_EQ(sendParts(connection, "room"), PlixLogSend::sent);
}

TEST(PlixLogConnection, AStreamLoggerGetsEachMessageEndedByAZeroByte)
{
    PlixTestLogDir dir;
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, dir.file("log").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    PlixLogConnection connection(dir.file("log"));
    ASSERT_EQ(sendParts(connection, "streamed"), PlixLogSend::sent);
    const int peer = accept(listener, nullptr, nullptr);
    char received[64];
    const ssize_t length = recv(peer, received, sizeof received, 0);
    EXPECT_EQ(std::string(received, length > 0 ? static_cast<std::size_t>(length) : 0),
              std::string("<13>streamed", 13));
    close(peer);
    close(listener);
}
