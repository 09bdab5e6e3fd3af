#include "PlixStoreRetry.h"

#include <utility>

PlixStoreRetry::PlixStoreRetry(std::chrono::milliseconds period, Attempt attempt)
    : period(period), attempt(std::move(attempt))
{
}

PlixStoreRetry::~PlixStoreRetry()
{
    if (source != 0) {
        g_source_remove(source);
    }
}

void PlixStoreRetry::arm()
{
    if (source == 0) {
        source = g_timeout_add(static_cast<guint>(period.count()), &PlixStoreRetry::tick, this);
    }
}

gboolean PlixStoreRetry::tick(gpointer self)
{
    auto* retry = static_cast<PlixStoreRetry*>(self);
    if (!retry->attempt()) {
        return G_SOURCE_CONTINUE;
    }
    retry->source = 0;
    return G_SOURCE_REMOVE;
}
