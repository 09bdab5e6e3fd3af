#pragma once

#include <glib.h>

#include <chrono>
#include <functional>

// Tries again, from the main loop, the store files that a commit could not
// write, so that a disk with room again makes the change durable without
// anyone setting it again. The timer runs only while a file is left
// unwritten: each tick tries every such file once, and the tick that leaves
// none ends it. Every try runs on the one thread of the main loop, between
// two client calls.
class PlixStoreRetry
{
public:
    // True when the try left no file unwritten.
    using Attempt = std::function<bool()>;

    PlixStoreRetry(std::chrono::milliseconds period, Attempt attempt);
    ~PlixStoreRetry();
    PlixStoreRetry(const PlixStoreRetry&) = delete;
    PlixStoreRetry& operator=(const PlixStoreRetry&) = delete;

    // Starts the timer unless it runs already: a running one keeps its
    // phase, so commits in quick succession do not push the retry away.
    void arm();
    bool armed() const { return source != 0; }

private:
    static gboolean tick(gpointer self);

    std::chrono::milliseconds period;
    Attempt attempt;
    guint source = 0;
};
