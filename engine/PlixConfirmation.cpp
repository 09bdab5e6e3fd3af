#include "PlixConfirmation.h"

#include "PlixLog.h"

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <sys/random.h>

namespace {

constexpr gint64 microsPerSecond = 1000000;
// 128 bits: no client can guess the token of another's change.
constexpr std::size_t tokenBytes = 16;
constexpr int notPending = 4;

std::string randomToken()
{
    unsigned char bytes[tokenBytes];
    std::size_t filled = 0;
    while (filled < tokenBytes) {
        const ssize_t got = getrandom(bytes + filled, tokenBytes - filled, 0);
        if (got > 0) {
            filled += static_cast<std::size_t>(got);
        } else if (errno != EINTR) {
            plixLog(LOG_ERR, "No random source for a confirmation token");
            return std::string();
        }
    }
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0x0f];
    }
    return text;
}

} // namespace

PlixConfirmation::PlixConfirmation(PutBack putBack) : putBack(std::move(putBack)), file("")
{
}

PlixConfirmation::~PlixConfirmation()
{
    stopTimer();
}

void PlixConfirmation::setStore(const std::string& storePath)
{
    file = PlixRollbackFile(storePath);
}

bool PlixConfirmation::prepare(std::vector<PlixRollbackEntry> contents, unsigned seconds,
                               std::string& error)
{
    deadline = g_get_monotonic_time() + static_cast<gint64>(seconds) * microsPerSecond;
    const std::int64_t wallDeadline = static_cast<std::int64_t>(std::time(nullptr)) + seconds;
    if (!file.write(contents, wallDeadline, error)) {
        return false;
    }
    replaced = std::move(contents);
    return true;
}

std::string PlixConfirmation::open()
{
    token = randomToken();
    windowOpen = true;
    const gint64 left = deadline - g_get_monotonic_time();
    source = g_timeout_add(static_cast<guint>(left > 0 ? left / 1000 : 0), expire, this);
    plixLog(LOG_NOTICE, "Change of %zu values awaits its confirmation for %u seconds",
            replaced.size(), secondsLeft());
    return token;
}

void PlixConfirmation::abandon()
{
    finish();
}

void PlixConfirmation::revert()
{
    const int result = putBack(replaced);
    if (result != 0) {
        plixLog(LOG_ERR, "Putting back the unstored change failed with %d", result);
    }
    finish();
}

unsigned PlixConfirmation::secondsLeft() const
{
    const gint64 left = deadline - g_get_monotonic_time();
    if (!windowOpen || left <= 0) {
        return 0;
    }
    return static_cast<unsigned>((left + microsPerSecond - 1) / microsPerSecond);
}

std::vector<std::string> PlixConfirmation::ids() const
{
    std::vector<std::string> xmlIds;
    if (windowOpen) {
        for (const PlixRollbackEntry& entry : replaced) {
            xmlIds.push_back(entry.xmlId);
        }
    }
    return xmlIds;
}

int PlixConfirmation::confirm(const std::string& offered)
{
    if (!matches(offered)) {
        plixLog(LOG_WARNING, "No change awaits this confirmation");
        return notPending;
    }
    plixLog(LOG_NOTICE, "Change of %zu values confirmed", replaced.size());
    finish();
    return 0;
}

int PlixConfirmation::cancel(const std::string& offered)
{
    if (!matches(offered)) {
        plixLog(LOG_WARNING, "No change awaits this confirmation");
        return notPending;
    }
    plixLog(LOG_NOTICE, "Change of %zu values cancelled", replaced.size());
    return rollBack();
}

void PlixConfirmation::restoreAtStart(const PlixValueTable& values)
{
    file.removeLeftover();
    std::vector<PlixRollbackEntry> read;
    const PlixRollbackFile::Reading reading = file.read(values, read);
    if (reading == PlixRollbackFile::Reading::corrupt) {
        std::string error;
        plixLog(LOG_ERR, "Rollback file %s is corrupt and not applied; it is kept as %s%s",
                file.path().c_str(), file.path().c_str(), PlixRollbackFile::corruptSuffix);
        if (!file.moveAside(error)) {
            plixLog(LOG_ERR, "Cannot rename %s: %s", file.path().c_str(), error.c_str());
        }
        return;
    }
    if (reading == PlixRollbackFile::Reading::read) {
        plixLog(LOG_NOTICE, "Restoring %zu values of a change that was never confirmed",
                read.size());
        replaced = std::move(read);
        windowOpen = true;
        rollBack();
    }
}

// Every character is compared, so the time taken tells nothing of how much
// of a guess was right; no token is empty, so an empty offer never matches.
bool PlixConfirmation::matches(const std::string& offered) const
{
    if (!windowOpen || token.empty() || offered.size() != token.size()) {
        return false;
    }
    unsigned char differs = 0;
    for (std::size_t i = 0; i < token.size(); ++i) {
        differs |= static_cast<unsigned char>(offered[i] ^ token[i]);
    }
    return differs == 0;
}

int PlixConfirmation::rollBack()
{
    stopTimer();
    deadline = g_get_monotonic_time();
    const int result = putBack(replaced);
    if (result != 0) {
        plixLog(LOG_ERR,
                "Rolling back the unconfirmed change failed with %d; trying again in %u "
                "seconds",
                result, retrySeconds);
        source = g_timeout_add_seconds(retrySeconds, expire, this);
        return result;
    }
    plixLog(LOG_NOTICE, "Rolled back %zu values of the unconfirmed change", replaced.size());
    finish();
    return 0;
}

// The file goes first: a power loss after it leaves the state that the
// confirmation or the rollback already made, which is the one to keep.
void PlixConfirmation::finish()
{
    stopTimer();
    std::string error;
    if (!file.remove(error)) {
        plixLog(LOG_ERR, "Cannot remove %s: %s", file.path().c_str(), error.c_str());
    }
    replaced.clear();
    token.clear();
    windowOpen = false;
}

void PlixConfirmation::stopTimer()
{
    if (source != 0) {
        g_source_remove(source);
        source = 0;
    }
}

gboolean PlixConfirmation::expire(gpointer self)
{
    auto* confirmation = static_cast<PlixConfirmation*>(self);
    confirmation->source = 0;
    confirmation->rollBack();
    return G_SOURCE_REMOVE;
}
