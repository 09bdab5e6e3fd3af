#include "PlixExit.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {
struct ExitRequested : std::runtime_error
{
    explicit ExitRequested(int status) : std::runtime_error("exit"), status(status) {}
    int status;
};

void throwExit(int status)
{
    throw ExitRequested(status);
}
} // namespace

TEST(PlixExit, EndsTheProcessWithTheStatus)
{
    EXPECT_EXIT(plixExit(16), testing::ExitedWithCode(16), "");
}

TEST(PlixExit, AHandlerInterceptsTheExit)
{
    plixSetExitHandler(throwExit);
    try {
        plixExit(5);
        FAIL() << "plixExit returned";
    } catch (const ExitRequested& e) {
        EXPECT_EQ(e.status, 5);
    }
    plixSetExitHandler(nullptr);
}
