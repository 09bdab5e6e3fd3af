#include "Plix.h"

#include "PlixLog.h"

namespace {
// The client the engine's own put-back transaction is held by; no bus name
// looks like it.
const char* const putBackClient = "-rollback";
} // namespace

int Plix::transactionStopConfirmed(std::string client, unsigned seconds, std::string& unstoredFile,
                                   std::string& token)
{
    if (!isHolder(client) || changedValues.empty()) {
        return transactionStop(std::move(client), unstoredFile);
    }
    std::string error;
    if (!pendingChange.prepare(contentsBeforeChange(), seconds, error)) {
        plixLog(LOG_ERR, "Cannot write %s: %s", pendingChange.filePath().c_str(), error.c_str());
        clear_plix();
        unstoredFile = pendingChange.filePath();
        return 0;
    }
    const int result = transactionStop(std::move(client), unstoredFile);
    if (result != 0) {
        pendingChange.abandon();
    } else if (!unstoredFile.empty()) {
        pendingChange.revert();
    } else {
        token = pendingChange.open();
    }
    return result;
}

std::vector<PlixRollbackEntry> Plix::contentsBeforeChange() const
{
    std::vector<PlixRollbackEntry> contents;
    for (const ValueMap::iterator& entry : changedValues) {
        PlixVariant content;
        if (!PlixJsonModifier::storedContent(entry->second, content)) {
            content = entry->second.getValue();
        }
        contents.push_back({entry->first, content});
    }
    return contents;
}

int Plix::putBack(const std::vector<PlixRollbackEntry>& contents)
{
    if (transactionOpen()) {
        plixLog(LOG_WARNING, "Plix is currently busy with another transaction!");
        return 8;
    }
    client = putBackClient;
    persistent = true;
    for (const PlixRollbackEntry& content : contents) {
        const auto entry = values.find(content.xmlId);
        if (entry == values.end()) {
            continue;
        }
        const unsigned result = markingSet(entry->second, content.content);
        if (result != 0) {
            clear_plix();
            return static_cast<int>(result);
        }
        recordChange(entry);
    }
    return transactionStop(putBackClient);
}
