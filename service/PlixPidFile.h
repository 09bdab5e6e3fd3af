#pragma once

#include <string>

// Single-instance lock: a write lock on "/var/lock/<name>.pid", held through
// a descriptor that stays open for the life of the process. The lock, not
// the file, excludes a second instance, so a file left behind by an ended
// process is simply reused.

// Returns the open, locked descriptor, or -1 (reported on standard error).
int checkPidFile(std::string name);

// The same for a lock file in another directory.
int checkPidFileIn(const std::string& directory, const std::string& name);

// Sets a non-blocking record lock (fd, origin, type, start, length) and
// answers what fcntl answers.
int lockfile(int fd, int whence, int type, int start, int length);
