#pragma once

#include "PlixBenchSessionPeer.h"

// The Xfce settings daemon (org.xfce.Xfconf at /org/xfce/Xfconf) as a
// further point of comparison: ten int properties of one channel, one
// SetProperty each. It answers before its channel file is written: the
// file follows from a timer seconds later, so its figure is not that of a
// durable write.
class PlixBenchXfconf
{
public:
    static constexpr int properties = 10;

    PlixBenchXfconf();

    bool connected() const { return daemon.connected(); }
    // Sets every property to a value of round i; false (with a message on
    // standard error) when a call fails.
    bool setAll(int i);
    bool ping() { return daemon.ping(); }

private:
    PlixBenchSessionPeer daemon;
};
