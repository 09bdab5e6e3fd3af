#pragma once

#include <glib.h>

#include <functional>

// The client time-out rides on the process alarm timer. A SIGALRM may
// interrupt any engine call half way, so the signal handler only writes one
// byte into a pipe; a source on the default main context reads it and runs
// the expiry there, where logging and string work are safe and no engine
// call is half done.
class PlixClientTimeout
{
public:
    // A client must make its next successful call within this many seconds.
    static constexpr unsigned timeoutSeconds = 4;

    using Expiry = std::function<void()>;

    explicit PlixClientTimeout(Expiry expiry);
    ~PlixClientTimeout();
    PlixClientTimeout(const PlixClientTimeout&) = delete;
    PlixClientTimeout& operator=(const PlixClientTimeout&) = delete;

    // Installs the process's SIGALRM handler (empty mask, interrupted system
    // calls restart).
    static void installSignalHandler(void (*handler)(int));
    // Async-signal-safe: the only thing a SIGALRM handler may call.
    static void signalExpiry();

    // Cancels a running time-out and starts a new one of timeoutSeconds; the
    // expiry is then routed to this object.
    void arm();
    void cancel();

private:
    static void openPipe();
    static gboolean dispatch(gint fd, GIOCondition condition, gpointer unused);
    void expireIfDue();

    Expiry expiry;
    // Monotonic time (microseconds) at which the armed time-out is due; 0
    // while nothing is armed. It tells a real expiry from an alarm that fired
    // just before the client's call re-armed or cancelled it.
    gint64 deadline = 0;
};
