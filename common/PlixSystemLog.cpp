#include "PlixSystemLog.h"

#include <ctime>
#include <syslog.h>
#include <utility>

PlixSystemLog::PlixSystemLog(std::string path, std::chrono::milliseconds patience)
    : mConnection(std::move(path)), mPatience(patience)
{
}

std::string PlixSystemLog::write(int priority, const char* text, std::size_t length)
{
    std::string notice;
    if (mDropped > 0 && !announceDropped(notice)) {
        return notice;
    }
    PlixLogSend result = send(priority, text, length);
    if (result == PlixLogSend::busy && mConnection.waitForRoom(mPatience)) {
        result = send(priority, text, length);
    }
    if (result == PlixLogSend::busy) {
        // The logger is stalled; this message is the first it did not take.
        mDropped = 1;
    }
    return notice;
}

std::string PlixSystemLog::droppedNotice(std::size_t count)
{
    return std::to_string(count) + " messages were not taken by the system log";
}

PlixLogSend PlixSystemLog::send(int priority, const char* text, std::size_t length)
{
    // Without a logger the header is not even made.
    if (!mConnection.ready()) {
        return PlixLogSend::absent;
    }
    std::string priorityText = PlixSyslogHeader::priorityText(priority);
    const std::string& stamp = mHeader.stampAndIdent(std::time(nullptr));
    const iovec parts[] = {{priorityText.data(), priorityText.size()},
                           {const_cast<char*>(stamp.data()), stamp.size()},
                           {const_cast<char*>(text), length}};
    return mConnection.send(parts, 3);
}

// While stalled, the notice goes first, without a wait; the message that
// follows it is dropped as well when the logger does not take the notice.
// A logger that went away takes neither, and the count waits for the next.
bool PlixSystemLog::announceDropped(std::string& notice)
{
    std::string text = droppedNotice(mDropped);
    const PlixLogSend result = send(LOG_NOTICE, text.data(), text.size());
    if (result == PlixLogSend::busy) {
        ++mDropped;
    }
    if (result != PlixLogSend::sent) {
        return false;
    }
    mDropped = 0;
    notice = std::move(text);
    return true;
}
