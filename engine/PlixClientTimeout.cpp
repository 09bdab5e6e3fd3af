#include "PlixClientTimeout.h"

#include <glib-unix.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// One alarm timer per process, so one pipe and one main-loop source per
// process, shared by whichever engine object armed the alarm last.
int pipeRead = -1;
volatile sig_atomic_t pipeWrite = -1;
PlixClientTimeout* armedBy = nullptr;

// An alarm fires no earlier than its deadline; the slack only absorbs clock
// rounding. A stale event seen after a re-arm is a full time-out early.
constexpr gint64 deadlineSlackMicroseconds = G_USEC_PER_SEC;

} // namespace

PlixClientTimeout::PlixClientTimeout(Expiry expiry) : expiry(std::move(expiry))
{
    openPipe();
}

PlixClientTimeout::~PlixClientTimeout()
{
    if (armedBy == this) {
        alarm(0);
        armedBy = nullptr;
    }
}

void PlixClientTimeout::installSignalHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
}

void PlixClientTimeout::signalExpiry()
{
    const int savedErrno = errno;
    const char event = 1;
    // Only a full pipe makes this fail, and then an unread event is waiting.
    const ssize_t written = write(pipeWrite, &event, 1);
    static_cast<void>(written);
    errno = savedErrno;
}

void PlixClientTimeout::arm()
{
    alarm(0);
    armedBy = this;
    deadline = g_get_monotonic_time() + static_cast<gint64>(timeoutSeconds) * G_USEC_PER_SEC;
    alarm(timeoutSeconds);
}

void PlixClientTimeout::cancel()
{
    alarm(0);
    deadline = 0;
}

void PlixClientTimeout::openPipe()
{
    if (pipeRead >= 0) {
        return;
    }
    int ends[2];
    // Close-on-exec keeps the pipe out of the shell commands of change actions.
    if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0) {
        return;
    }
    pipeRead = ends[0];
    pipeWrite = ends[1];
    g_unix_fd_add(pipeRead, G_IO_IN, &PlixClientTimeout::dispatch, nullptr);
}

gboolean PlixClientTimeout::dispatch(gint fd, GIOCondition, gpointer)
{
    char events[16];
    while (read(fd, events, sizeof events) > 0) {
    }
    if (armedBy != nullptr) {
        armedBy->expireIfDue();
    }
    return G_SOURCE_CONTINUE;
}

void PlixClientTimeout::expireIfDue()
{
    if (deadline == 0 || g_get_monotonic_time() + deadlineSlackMicroseconds < deadline) {
        return;
    }
    deadline = 0;
    expiry();
}
