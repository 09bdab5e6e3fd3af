#include "PlixDaemon.h"

#include "PlixExit.h"
#include "PlixLog.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace {
constexpr key_t startupSemaphoreKey = 123452;
constexpr unsigned short childSignal = 0;
constexpr unsigned short parentAnswer = 1;

// The caller defines the argument of semctl's value commands.
union semun
{
    int val;
    struct semid_ds* buf;
    unsigned short* array;
};

int setSemaphore(int semid, unsigned short semaphore, int value)
{
    semun argument{};
    argument.val = value;
    return semctl(semid, semaphore, SETVAL, argument);
}

void removeSemaphoreSet(int semid)
{
    semctl(semid, 0, IPC_RMID);
}

[[noreturn]] void waitForChildThenExit(int semid)
{
    semaphore_operation(semid, semaphoreStep(childSignal, -1));
    semaphore_operation(semid, semaphoreStep(childSignal, 1));
    semaphore_operation(semid, semaphoreStep(parentAnswer, 1));
    plixLog(LOG_INFO, "Exiting parent process");
    plixExit(0);
}

void detachChild()
{
    umask(0);
    if (setsid() < 0 || chdir("/") < 0) {
        plixExit(1);
    }
    // A stream that cannot be reopened stays closed, which loses nothing a
    // detached daemon needs; there is no terminal left to report it on.
    (void)std::freopen("/dev/null", "r", stdin);
    (void)std::freopen("/dev/null", "w", stdout);
    (void)std::freopen("/dev/null", "w", stderr);
}
} // namespace

struct sembuf semaphoreStep(unsigned short semaphore, short delta)
{
    struct sembuf op
    {
    };
    op.sem_num = semaphore;
    op.sem_op = delta;
    op.sem_flg = SEM_UNDO;
    return op;
}

int semaphore_operation(int semid, struct sembuf op)
{
    if (semop(semid, &op, 1) < 0) {
        std::fputs("Error during semaphore operation!", stderr);
        plixExit(1);
    }
    return 1;
}

int init_semaphore(int nsems)
{
    const int existing = semget(startupSemaphoreKey, 0, 0);
    if (existing >= 0) {
        return existing;
    }
    umask(0);
    const int semid = semget(startupSemaphoreKey, nsems, IPC_CREAT | IPC_EXCL | 0666);
    if (semid < 0) {
        std::perror("Error while creating semaphore.");
        plixExit(1);
    }
    plixTrace("Semaphor created ID: %d\n", semid);
    return semid;
}

int daemonize()
{
    plixLog(LOG_INFO, "DBus service will be started as daemon");
    const int semid = init_semaphore(2);
    if (setSemaphore(semid, parentAnswer, 1) < 0 || setSemaphore(semid, childSignal, 1) < 0) {
        std::perror("semctl didn't work.\n");
        removeSemaphoreSet(semid);
        plixExit(1);
    }
    // The parent holds both semaphores until the child has come up.
    semaphore_operation(semid, semaphoreStep(childSignal, -1));
    semaphore_operation(semid, semaphoreStep(parentAnswer, -1));
    std::fflush(stdout);
    const pid_t pid = fork();
    if (pid < 0) {
        std::perror("Error creating the child process\n");
        plixExit(1);
    }
    if (pid > 0) {
        waitForChildThenExit(semid);
    }
    detachChild();
    return semid;
}

void releaseParent(int semid, void (*between)())
{
    semaphore_operation(semid, semaphoreStep(childSignal, 1));
    semaphore_operation(semid, semaphoreStep(parentAnswer, -1));
    if (between != nullptr) {
        between();
    }
    semaphore_operation(semid, semaphoreStep(parentAnswer, 1));
    removeSemaphoreSet(semid);
}

void shutdown_pid_file_failure(int semid)
{
    releaseParent(semid, nullptr);
    plixExit(2);
}
