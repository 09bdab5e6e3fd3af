#!/bin/sh
# Builds the fuzz targets of the configuration loader and the JSON store with
# clang (libFuzzer and AddressSanitizer) in a build directory of their own,
# then runs each for about 30 seconds on a copy of the committed corpus.
# A crash, a leak or a hang ends the script with a non-zero status; the
# input that caused it is left in the build directory.
set -eu
cd "$(dirname "$0")/.."
build=$(realpath -m "${PLIX_FUZZ_BUILD_DIR:-build-fuzz}")
flags="-fsanitize=address,fuzzer-no-link"
CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DPLIX_FUZZ=ON \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$build" --target xml_loader_fuzz json_store_fuzz -j2

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for target in xml_loader json_store; do
    mkdir "$work/$target"
    cp tests/fuzz/corpus/$target/* "$work/$target/"
    "$build/tests/fuzz/${target}_fuzz" -max_total_time=30 -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$build/${target}-" "$work/$target"
done
echo "fuzz: no crash in either target"
