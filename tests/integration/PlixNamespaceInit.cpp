// The first process of a test's PID namespace. It starts the command given
// to it and then reaps every process of the namespace, the daemon's detached
// child included (orphans are handed to the namespace's first process), and
// records each one's exit status, so a test can see the status of a process
// that is nobody's child outside. It ends, and with it the namespace, when no
// process is left, with the exit status of the command it started.
//
//   plix-ns-init STATUSFILE COMMAND [ARGUMENT...]
//
// STATUSFILE gets one line per ended process: its process id inside the
// namespace, a blank and its exit status (128 + signal number if killed).

#include <errno.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace {
void recordStatus(const char* statusFile, pid_t pid, int status)
{
    const std::string line = std::to_string(pid) + " " + std::to_string(status) + "\n";
    const int fd = open(statusFile, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd >= 0) {
        const ssize_t written = write(fd, line.data(), line.size());
        (void)written;
        close(fd);
    }
}

int statusOf(int rawStatus)
{
    return WIFEXITED(rawStatus) ? WEXITSTATUS(rawStatus) : 128 + WTERMSIG(rawStatus);
}
} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s STATUSFILE COMMAND [ARGUMENT...]\n", argv[0]);
        return 96;
    }
    const pid_t command = fork();
    if (command == 0) {
        execv(argv[2], argv + 2);
        std::perror(argv[2]);
        _exit(127);
    }
    if (command < 0) {
        std::perror("fork");
        return 96;
    }
    int commandStatus = 96;
    while (true) {
        int rawStatus = 0;
        const pid_t ended = waitpid(-1, &rawStatus, 0);
        if (ended < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        recordStatus(argv[1], ended, statusOf(rawStatus));
        if (ended == command) {
            commandStatus = statusOf(rawStatus);
        }
    }
    return commandStatus;
}
