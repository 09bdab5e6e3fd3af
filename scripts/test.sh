#!/bin/sh
# The test command: installs what is missing, builds, runs every unit and
# integration test with ctest, then gives the XML loader and the JSON store a
# short fuzzing run.
set -eu
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$(nproc)"
(cd build && ctest --output-on-failure -j"$(nproc)" --timeout 600)
./scripts/fuzz.sh
