#pragma once

#include <syslog.h>

#include <functional>
#include <string>

// Every message of the service goes to the system log (default identity and
// facility) and then to standard output as a level tag, the same text and a
// line feed, so a supervisor reading the pipe sees what syslog sees. A
// system logger that does not take a message within 10 ms is stalled: the
// messages it cannot take at once are left out of the system log (never out
// of standard output) until it takes one again, which is preceded there and
// on standard output by the notice of how many were left out.
void plixLog(int priority, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Trace lines that go to standard output only, without tag or line feed.
void plixTrace(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The tag written in front of a message of the given syslog priority.
const char* plixLogTag(int priority);

// Makes standard output line-buffered, so each line leaves the process at
// once; called first thing in main.
void plixLineBufferedOutput();

// Takes every message in place of the system log and standard output, and
// silences the trace lines: a program that loads the configuration to check
// it gathers the service's messages instead of printing them. An empty sink
// restores the normal output.
using PlixLogSink = std::function<void(int priority, const std::string& text)>;
void plixSetLogSink(PlixLogSink sink);
