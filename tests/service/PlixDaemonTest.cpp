#include "PlixDaemon.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cstdlib>

namespace {
int privateSet()
{
    return semget(IPC_PRIVATE, 2, 0600);
}

bool setExists(int semid)
{
    struct semid_ds state
    {
    };
    return semctl(semid, 0, IPC_STAT, &state) == 0;
}

int testSet = -1;
int signalSeenBetween = -1;
int answerSeenBetween = -1;

void noteSemaphores()
{
    signalSeenBetween = semctl(testSet, 0, GETVAL);
    answerSeenBetween = semctl(testSet, 1, GETVAL);
}

// The service's semaphore key is fixed, so the steps that use it run in a
// child with an IPC namespace of its own; that needs root.
bool mayUsePrivateIpc()
{
    return geteuid() == 0;
}

void enterPrivateIpc()
{
    if (unshare(CLONE_NEWIPC) != 0) {
        std::_Exit(99);
    }
    dup2(STDERR_FILENO, STDOUT_FILENO);
}
} // namespace

class PlixDaemonTest : public testing::Test
{
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "fast"); }
};

TEST_F(PlixDaemonTest, SemaphoreStepCarriesTheUndoFlag)
{
    const struct sembuf step = semaphoreStep(1, -1);
    EXPECT_EQ(step.sem_num, 1);
    EXPECT_EQ(step.sem_op, -1);
    EXPECT_EQ(step.sem_flg, SEM_UNDO);
}

TEST_F(PlixDaemonTest, SemaphoreOperationReturnsOneOnSuccess)
{
    const int semid = privateSet();
    ASSERT_GE(semid, 0);
    EXPECT_EQ(semaphore_operation(semid, semaphoreStep(0, 1)), 1);
    EXPECT_EQ(semctl(semid, 0, GETVAL), 1);
    semctl(semid, 0, IPC_RMID);
}

TEST_F(PlixDaemonTest, FailedSemaphoreOperationExitsWithStatus1)
{
    EXPECT_EXIT(semaphore_operation(-1, semaphoreStep(0, 1)), testing::ExitedWithCode(1),
                "^Error during semaphore operation!$");
}

TEST_F(PlixDaemonTest, ReleaseParentWakesParentWaitsForAnswerRunsStepAndRemovesSet)
{
    testSet = privateSet();
    ASSERT_GE(testSet, 0);
    semaphore_operation(testSet, semaphoreStep(1, 1));
    releaseParent(testSet, noteSemaphores);
    EXPECT_EQ(signalSeenBetween, 1);
    EXPECT_EQ(answerSeenBetween, 0);
    EXPECT_FALSE(setExists(testSet));
    semctl(testSet, 0, IPC_RMID);
}

TEST_F(PlixDaemonTest, LockFailureInDaemonModeReleasesParentAndExitsWithStatus2)
{
    const int semid = privateSet();
    ASSERT_GE(semid, 0);
    semaphore_operation(semid, semaphoreStep(1, 1));
    EXPECT_EXIT(shutdown_pid_file_failure(semid), testing::ExitedWithCode(2), "");
    EXPECT_FALSE(setExists(semid));
    semctl(semid, 0, IPC_RMID);
}

TEST_F(PlixDaemonTest, SemaphoreSetIdIsPrintedOnlyWhenTheSetIsCreated)
{
    if (!mayUsePrivateIpc()) {
        GTEST_SKIP() << "an IPC namespace of its own needs root";
    }
    EXPECT_EXIT(
        {
            enterPrivateIpc();
            const int created = init_semaphore(2);
            std::fputs("--\n", stdout);
            const int reused = init_semaphore(5);
            std::fflush(stdout);
            std::_Exit(created == reused && created >= 0 ? 0 : 3);
        },
        testing::ExitedWithCode(0), "^Semaphor created ID: [0-9]+\n--\n$");
}

TEST_F(PlixDaemonTest, DaemonParentEndsWithStatus0OnceTheChildSignals)
{
    if (!mayUsePrivateIpc()) {
        GTEST_SKIP() << "an IPC namespace of its own needs root";
    }
    EXPECT_EXIT(
        {
            enterPrivateIpc();
            const int semid = daemonize();
            // Only the child gets here; it reports as the bus host would.
            releaseParent(semid, nullptr);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0),
        "^\\[NFO\\] DBus service will be started as daemon\nSemaphor created ID: [0-9]+\n"
        "\\[NFO\\] Exiting parent process\n$");
}
