#pragma once

#include <syslog.h>

// Every message of the service goes to the system log (default identity and
// facility) and then to standard output as a level tag, the same text and a
// line feed, so a supervisor reading the pipe sees what syslog sees.
void plixLog(int priority, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Trace lines that go to standard output only, without tag or line feed.
void plixTrace(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The tag written in front of a message of the given syslog priority.
const char* plixLogTag(int priority);

// Makes standard output line-buffered, so each line leaves the process at
// once; called first thing in main.
void plixLineBufferedOutput();
