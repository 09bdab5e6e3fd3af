#include "PlixPidFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {
const char* const serviceName = "com.orvanta.plix";

std::string readFile(const std::string& path)
{
    std::ifstream file(path);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}
} // namespace

class PlixPidFileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        GTEST_FLAG_SET(death_test_style, "fast");
        char pattern[] = "/tmp/plix-pidfile-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        directory = pattern;
        path = directory + "/" + serviceName + ".pid";
    }

    void TearDown() override
    {
        if (fd >= 0) {
            close(fd);
        }
        unlink(path.c_str());
        rmdir(directory.c_str());
    }

    std::string ownId() const { return std::to_string(getpid()) + "\n"; }

    std::string directory;
    std::string path;
    int fd = -1;
};

TEST_F(PlixPidFileTest, LockCreatesFileHoldingTheProcessId)
{
    fd = checkPidFileIn(directory, serviceName);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(readFile(path), ownId());
}

TEST_F(PlixPidFileTest, LockFileHasMode0600)
{
    fd = checkPidFileIn(directory, serviceName);
    ASSERT_GE(fd, 0);
    struct stat status
    {
    };
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
}

TEST_F(PlixPidFileTest, LockDescriptorIsClosedOnExec)
{
    fd = checkPidFileIn(directory, serviceName);
    ASSERT_GE(fd, 0);
    EXPECT_NE(fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(PlixPidFileTest, SecondInstanceFailsWithAlreadyLockedAndFirstKeepsItsFile)
{
    fd = checkPidFileIn(directory, serviceName);
    ASSERT_GE(fd, 0);
    // Record locks exclude other processes only, so the second instance is
    // a child process.
    EXPECT_EXIT(std::exit(checkPidFileIn(directory, serviceName) == -1 ? 7 : 0),
                testing::ExitedWithCode(7), "^PID-File already locked\\.\n: ");
    EXPECT_EQ(readFile(path), ownId());
}

TEST_F(PlixPidFileTest, StaleFileIsReusedTruncatedAndRewritten)
{
    std::ofstream(path) << "4194303\nleft over by an ended process\n";
    fd = checkPidFileIn(directory, serviceName);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(readFile(path), ownId());
}

TEST_F(PlixPidFileTest, MissingDirectoryReportsCreateFailure)
{
    testing::internal::CaptureStderr();
    const int result = checkPidFileIn(directory + "/missing", serviceName);
    const std::string error = testing::internal::GetCapturedStderr();
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error.rfind("coudln't create lockfile.\n: ", 0), 0u) << error;
}

TEST_F(PlixPidFileTest, LockfileAnswersWhatFcntlAnswers)
{
    fd = open(path.c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(lockfile(fd, SEEK_SET, F_WRLCK, 0, 0), 0);
    EXPECT_EQ(lockfile(-1, SEEK_SET, F_WRLCK, 0, 0), -1);
}
