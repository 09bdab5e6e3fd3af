#!/bin/sh
# Runs the integration tests once with every service instance under
# valgrind memcheck (through PLIX_SERVICE_WRAPPER, read by the tests'
# harness). Zero memcheck errors are required: any error reported by any
# instance fails the run, even when the test that provoked it passed.
#
#   PLIX_VALGRIND_BUILD_DIR  build directory (default build-valgrind)
#   extra arguments go to ctest (for example -R Adaptor)
set -eu
cd "$(dirname "$0")/.."
root=$(pwd)
build=$(realpath -m "${PLIX_VALGRIND_BUILD_DIR:-build-valgrind}")

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2

PLIX_VALGRIND_LOG_DIR=$(mktemp -d)
PLIX_SERVICE_WRAPPER="$root/scripts/valgrind-service.sh"
export PLIX_VALGRIND_LOG_DIR PLIX_SERVICE_WRAPPER

# Left out: the load test and the bus fuzzer measure calls per second and
# resident memory, which mean nothing under valgrind, and the power-loss test
# repeats the start-up hundreds of times; the other integration tests cover
# the same code paths.
status=0
(cd "$build" && ctest --output-on-failure -j2 --timeout 900 -L integration \
    -E 'LoadTest|dbus_fuzz|integration_power_loss' "$@") || status=1

instances=$(find "$PLIX_VALGRIND_LOG_DIR" -name '*.xml' | wc -l)
erroneous=$(grep -l '<error>' "$PLIX_VALGRIND_LOG_DIR"/*.xml 2>/dev/null || true)
if [ -n "$erroneous" ]; then
    for xml in $erroneous; do
        echo "valgrind: errors in one service instance ($xml):"
        sed -n '/<error>/,/<\/error>/p' "$xml"
    done
    status=1
fi
if [ "$instances" -eq 0 ]; then
    echo "valgrind: no service instance ran under valgrind"
    status=1
fi
if [ "$status" -eq 0 ]; then
    echo "valgrind: $instances service instances, no memcheck error"
    rm -rf "$PLIX_VALGRIND_LOG_DIR"
else
    echo "valgrind: logs kept in $PLIX_VALGRIND_LOG_DIR"
fi
exit "$status"
