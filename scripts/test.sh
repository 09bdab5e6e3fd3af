#!/bin/sh
# The test command: installs what is missing, builds and runs every test.
set -eu
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$(nproc)"
cd build
ctest --output-on-failure -j"$(nproc)" --timeout 600
