#include "PlixRewriteAttempts.h"

#include <gtest/gtest.h>

#include <string>

namespace {
const char* const path = "/data/store.json";

class PlixRewriteAttemptsTest : public testing::Test
{
protected:
    template <typename Call>
    std::string outputOf(Call call)
    {
        testing::internal::CaptureStdout();
        call();
        return testing::internal::GetCapturedStdout();
    }

    PlixRewriteAttempts attempts{path};
};
} // namespace

TEST_F(PlixRewriteAttemptsTest, AFileNeverFailedIsNotFailingAndItsWriteLogsNothing)
{
    EXPECT_FALSE(attempts.failing());
    EXPECT_EQ(outputOf([&] { attempts.succeeded(); }), "");
    EXPECT_EQ(attempts.failedCount(), 0u);
}

TEST_F(PlixRewriteAttemptsTest, TheFirstFailureLogsItsError)
{
    EXPECT_EQ(outputOf([&] { attempts.failed("No space left on device"); }),
              "[ERR] Could not write /data/store.json: No space left on device\n");
    EXPECT_TRUE(attempts.failing());
    EXPECT_EQ(attempts.failedCount(), 1u);
    EXPECT_EQ(attempts.error(), "No space left on device");
}

TEST_F(PlixRewriteAttemptsTest, TheSameErrorAgainIsCountedButNotLogged)
{
    attempts.failed("No space left on device");
    const std::string output = outputOf([&] {
        for (int i = 0; i < 100; ++i) {
            attempts.failed("No space left on device");
        }
    });
    EXPECT_EQ(output, "");
    EXPECT_EQ(attempts.failedCount(), 101u);
}

TEST_F(PlixRewriteAttemptsTest, AnErrorOfAnotherTextIsLoggedAndBecomesTheLatest)
{
    attempts.failed("No space left on device");
    EXPECT_EQ(outputOf([&] { attempts.failed("Read-only file system"); }),
              "[ERR] Could not write /data/store.json: Read-only file system\n");
    EXPECT_EQ(outputOf([&] { attempts.failed("No space left on device"); }),
              "[ERR] Could not write /data/store.json: No space left on device\n");
    EXPECT_EQ(attempts.error(), "No space left on device");
}

TEST_F(PlixRewriteAttemptsTest, ASuccessAfterFailuresLogsOneNoticeWithTheirNumber)
{
    attempts.failed("No space left on device");
    attempts.failed("No space left on device");
    attempts.failed("No space left on device");
    EXPECT_EQ(outputOf([&] { attempts.succeeded(); }),
              "[NOT] /data/store.json written after 3 failed attempts\n");
    EXPECT_FALSE(attempts.failing());
    EXPECT_EQ(attempts.error(), "");
    EXPECT_EQ(outputOf([&] { attempts.succeeded(); }), "");
}

TEST_F(PlixRewriteAttemptsTest, ASuccessAfterOneFailureSaysAttemptInTheSingular)
{
    attempts.failed("No space left on device");
    EXPECT_EQ(outputOf([&] { attempts.succeeded(); }),
              "[NOT] /data/store.json written after 1 failed attempt\n");
}

TEST_F(PlixRewriteAttemptsTest, AFailureAfterASuccessIsLoggedAsNew)
{
    attempts.failed("No space left on device");
    attempts.succeeded();
    EXPECT_EQ(outputOf([&] { attempts.failed("No space left on device"); }),
              "[ERR] Could not write /data/store.json: No space left on device\n");
    EXPECT_EQ(attempts.failedCount(), 1u);
}
