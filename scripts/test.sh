#!/bin/sh
# The test command: installs what is missing, builds, runs every unit and
# integration test with ctest, then gives the XML loader and the JSON store a
# short fuzzing run. A skipped test fails the run in CI (CI=true) and is
# counted elsewhere (scripts/test-skips.sh).
set -eu
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$(nproc)"
results=$(pwd)/build/Testing/ctest-results.xml
ctest --test-dir build --output-on-failure -j"$(nproc)" --timeout 600 --output-junit "$results"
./scripts/test-skips.sh "$results"
./scripts/fuzz.sh
