#pragma once

#include <sys/sem.h>

// Daemon mode: the parent stays until the child signals through a System V
// semaphore set (key 123452, two semaphores) that it owns the bus name and
// has exported its objects, so whoever started the service knows it is
// reachable when the parent ends. Semaphore 0 carries the child's signal,
// semaphore 1 the parent's answer.

// Forks into a daemon. Only the child returns, with the semaphore-set id;
// the parent ends with status 0 once the child has signalled.
int daemonize();

// Id of the set with the service's key, created with nsems semaphores when
// it does not exist yet; an existing set is reused whatever its size.
int init_semaphore(int nsems);

// Performs one semaphore operation; a failure ends the process (status 1).
int semaphore_operation(int semid, struct sembuf op);

// One step on a semaphore of the set, undone by the kernel when the process
// ends so that an aborted start never blocks the next one.
struct sembuf semaphoreStep(unsigned short semaphore, short delta);

// The child's half of the handshake: wakes the parent, waits for its
// answer, runs between (if any) and removes the set.
void releaseParent(int semid, void (*between)());

// The lock could not be taken in daemon mode: releases the parent and ends
// with status 2.
[[noreturn]] void shutdown_pid_file_failure(int semid);
