#!/bin/sh
# Builds the whole service and its tests with AddressSanitizer and
# UndefinedBehaviorSanitizer in a build directory of its own and runs every
# unit and integration test. The first sanitizer report stops the process
# that made it, so the test fails; leaks are reported at exit. A skipped
# test fails the run in CI (CI=true) and is counted elsewhere
# (scripts/test-skips.sh).
#
#   PLIX_ASAN_BUILD_DIR  build directory (default build-asan)
#   extra arguments go to ctest (for example -R Adaptor or -L integration)
set -eu
cd "$(dirname "$0")/.."
root=$(pwd)
build=$(realpath -m "${PLIX_ASAN_BUILD_DIR:-build-asan}")
flags="-fsanitize=address,undefined -fno-omit-frame-pointer"
./scripts/install-deps.sh

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
    -DCMAKE_EXE_LINKER_FLAGS="$flags" -DCMAKE_SHARED_LINKER_FLAGS="$flags" >/dev/null
cmake --build "$build" -j2

# The service's children (the integration tests run it in namespaces) inherit
# these, so a report in the service fails the test that provoked it.
# verify_asan_link_order=0: some integration tests preload a double of the
# system-configuration library into the service ahead of the sanitizer's
# runtime; harmless, since the double defines none of the functions that the
# sanitizer replaces (malloc, free and the like), so those still resolve to it.
ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:exitcode=86:verify_asan_link_order=0"
UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1:exitcode=86"
LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp:print_suppressions=0"
export ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS

results=$build/Testing/ctest-results.xml
ctest --test-dir "$build" --output-on-failure -j2 --timeout 600 --output-junit "$results" "$@"
./scripts/test-skips.sh "$results"
echo "sanitize: every test passed under AddressSanitizer and UndefinedBehaviorSanitizer"
