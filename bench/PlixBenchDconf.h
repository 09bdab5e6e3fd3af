#pragma once

#include "PlixBenchSessionPeer.h"

// The desktop settings store's writer (ca.desrt.dconf.Writer.Change at
// /ca/desrt/dconf/Writer/user) as a point of comparison for a durable write
// of ten values: each Change carries ten int keys and is answered once the
// store file has been rewritten (new file synced, renamed over the old one,
// directory synced).
class PlixBenchDconf
{
public:
    static constexpr int keysPerChange = 10;

    PlixBenchDconf();

    bool connected() const { return writer.connected(); }
    // One Change of every key to a value of round i; false (with a message
    // on standard error) when the call fails.
    bool change(int i);
    bool ping() { return writer.ping(); }

private:
    PlixBenchSessionPeer writer;
};
