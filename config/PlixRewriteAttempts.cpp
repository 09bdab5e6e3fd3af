#include "PlixRewriteAttempts.h"

#include "PlixLog.h"

#include <utility>

PlixRewriteAttempts::PlixRewriteAttempts(std::string path) : path(std::move(path))
{
}

void PlixRewriteAttempts::failed(const std::string& error)
{
    if (failures == 0 || error != latestError) {
        plixLog(LOG_ERR, "Could not write %s: %s", path.c_str(), error.c_str());
    }
    ++failures;
    latestError = error;
}

void PlixRewriteAttempts::succeeded()
{
    if (failures != 0) {
        plixLog(LOG_NOTICE, "%s written after %u failed %s", path.c_str(), failures,
                failures == 1 ? "attempt" : "attempts");
    }
    failures = 0;
    latestError.clear();
}
