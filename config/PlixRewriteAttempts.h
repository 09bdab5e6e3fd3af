#pragma once

#include <string>

// The rewrites of one store file that failed since it was last written. A
// file that cannot be written stays due and is tried again at every commit
// that rewrites a file and by the engine's retry timer, so on a full disk the
// same error comes back at every try: it is logged when it first happens and
// again only when its text changes, and the write that finally succeeds is
// logged once with the number of tries that failed before it.
class PlixRewriteAttempts
{
public:
    explicit PlixRewriteAttempts(std::string path);

    void failed(const std::string& error);
    void succeeded();
    bool failing() const { return failures != 0; }
    unsigned failedCount() const { return failures; }
    // The error of the latest write; empty when it succeeded.
    const std::string& error() const { return latestError; }

private:
    std::string path;
    unsigned failures = 0;
    std::string latestError;
};
