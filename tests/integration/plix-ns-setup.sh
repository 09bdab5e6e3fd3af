#!/bin/sh
# First program inside a test's private namespaces (mount, IPC, PID). It lays
# the test's own directory over the machine's lock directory, so the service's
# PID file is private to the test and readable from outside, then runs the
# rest of its command line in its place.
#
#   PLIX_TEST_LOCKDIR    the test's lock directory
#   PLIX_TEST_REAL_LOCK  the real path of /var/lock (symbolic links resolved)
#   PLIX_TEST_PRELOAD    optional: a library to preload into what follows
#   PLIX_TEST_READONLY   optional: directories (separated by blanks) that are
#                        read-only inside the namespaces, as on a device whose
#                        root file system is mounted read-only
#   PLIX_TEST_PRIVATE_DEV optional: any value lays a /dev of the test's own
#                        (null, zero, random and urandom only) over the
#                        machine's, where the test may make a system logger
#   PLIX_TEST_DEV_LOG_LINK optional: /dev/log in that /dev is made a symbolic
#                        link to this path
if [ -z "$PLIX_TEST_LOCKDIR" ] || [ -z "$PLIX_TEST_REAL_LOCK" ]; then
    echo "plix-ns-setup: lock directory variables missing" >&2
    exit 97
fi
if ! mount --bind "$PLIX_TEST_LOCKDIR" "$PLIX_TEST_REAL_LOCK"; then
    echo "plix-ns-setup: cannot bind-mount the lock directory" >&2
    exit 97
fi
for directory in $PLIX_TEST_READONLY; do
    if ! { mount --bind "$directory" "$directory" &&
        mount -o remount,bind,ro "$directory"; }; then
        echo "plix-ns-setup: cannot make $directory read-only" >&2
        exit 97
    fi
done
if [ -n "$PLIX_TEST_PRIVATE_DEV" ]; then
    # Made aside and then moved over /dev, so the machine's nodes can still
    # be bound into it; nothing is created in the machine's own /dev.
    dev="$PLIX_TEST_LOCKDIR.dev"
    mkdir -p "$dev" && mount -t tmpfs -o mode=0755 plix-dev "$dev" || exit 97
    for node in null zero random urandom; do
        touch "$dev/$node" && mount --bind "/dev/$node" "$dev/$node" || exit 97
    done
    if [ -n "$PLIX_TEST_DEV_LOG_LINK" ]; then
        ln -s "$PLIX_TEST_DEV_LOG_LINK" "$dev/log" || exit 97
    fi
    if ! mount --move "$dev" /dev; then
        echo "plix-ns-setup: cannot lay a private /dev" >&2
        exit 97
    fi
fi
if [ -n "$PLIX_TEST_PRELOAD" ]; then
    LD_PRELOAD="$PLIX_TEST_PRELOAD"
    export LD_PRELOAD
fi
exec "$@"
