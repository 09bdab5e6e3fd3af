#pragma once

#include "PlixRollbackFile.h"

#include <glib.h>

#include <functional>
#include <string>
#include <vector>

// A committed change that stays only if it is confirmed in time: a change of
// the network settings made over the network may cut off the very client
// that made it, and the device must then find its way back by itself. While
// the window is open the values the change replaced wait in memory and in
// the rollback file; a confirmation keeps the change, a cancel or the end of
// the window puts them back through the engine. A put-back that fails is
// tried again every retrySeconds until it succeeds or a confirmation comes.
// The timers run on the main loop, between two client calls.
class PlixConfirmation
{
public:
    static constexpr unsigned shortestWindow = 10;
    static constexpr unsigned longestWindow = 3600;
    static constexpr unsigned retrySeconds = 10;

    // Puts the contents back as one persistent transaction of the engine
    // and answers its code.
    using PutBack = std::function<int(const std::vector<PlixRollbackEntry>&)>;

    explicit PlixConfirmation(PutBack putBack);
    ~PlixConfirmation();
    PlixConfirmation(const PlixConfirmation&) = delete;
    PlixConfirmation& operator=(const PlixConfirmation&) = delete;

    // Where the rollback file lives: beside the store file at storePath.
    void setStore(const std::string& storePath);
    const std::string& filePath() const { return file.path(); }

    // Before the commit: keeps the replaced contents and writes them, with
    // the window's end, to the rollback file. False, with the reason, when
    // the file could not be written; then nothing is kept.
    bool prepare(std::vector<PlixRollbackEntry> contents, unsigned seconds, std::string& error);
    // After a commit that took effect and is stored: opens the window and
    // answers the token that confirms or cancels it.
    std::string open();
    // After a commit that failed: forgets the prepared contents and the file.
    void abandon();
    // After a commit that took effect but is not stored: a change the store
    // does not hold cannot wait for a confirmation, so it goes back at once.
    void revert();

    bool pending() const { return windowOpen; }
    unsigned secondsLeft() const;
    std::vector<std::string> ids() const;
    // 0, or 4 when nothing is pending or the token differs.
    int confirm(const std::string& offered);
    // The put-back's code, or 4 as for confirm.
    int cancel(const std::string& offered);

    // A rollback file found at start belongs to a change that was never
    // confirmed: its contents go back before anything else runs. A file
    // that cannot be read whole is renamed aside and not applied at all.
    void restoreAtStart(const PlixValueTable& values);

private:
    bool matches(const std::string& offered) const;
    int rollBack();
    void finish();
    void stopTimer();
    static gboolean expire(gpointer self);

    PutBack putBack;
    PlixRollbackFile file;
    std::vector<PlixRollbackEntry> replaced;
    std::string token;
    bool windowOpen = false;
    // Monotonic time (microseconds) at which the window ends.
    gint64 deadline = 0;
    guint source = 0;
};
