#!/bin/sh
# Reports the tests that a ctest run skipped, from the JUnit file that ctest
# wrote (--output-junit). A skipped test tested nothing, so in CI (CI=true)
# every skip fails the run, each named with its reason; elsewhere one line
# says how many were skipped, and --list names each with its reason without
# failing (the emulated ARM run, where the namespace tests cannot run).
#
#   test-skips.sh [--list] JUNIT_FILE
set -eu
list=""
if [ "${1:-}" = "--list" ]; then
    list=yes
    shift
fi
junit=$1
[ -f "$junit" ] || { echo "test-skips: no ctest results in $junit" >&2; exit 1; }

# One line per skipped test: its name, a tab, its reason. The reason is what
# the test printed: the lines after GoogleTest's "Skipped" up to the blank
# line or GoogleTest's next "[" line that ends them, or a script's
# "SKIPPED:" line.
skips=$(awk '
    function unescape(s) {
        gsub(/&lt;/, "<", s); gsub(/&gt;/, ">", s); gsub(/&quot;/, "\"", s)
        gsub(/&apos;/, "\047", s); gsub(/&amp;/, "\\&", s)
        return s
    }
    function report() {
        if (skipped) {
            sub(/^ +/, "", reason)
            printf "%s\t%s\n", unescape(name), reason == "" ? "(no reason printed)" : unescape(reason)
        }
        skipped = 0; reason = ""; reading = 0
    }
    /<testcase / {
        report()
        name = $0; sub(/.*<testcase name="/, "", name); sub(/".*/, "", name)
        next
    }
    /<skipped / { skipped = 1; next }
    { sub(/^[[:space:]]*<system-out>/, "") }
    /<\/testcase>/ { report(); next }
    skipped && /^SKIPPED: / { line = $0; sub(/^SKIPPED: /, "", line); reason = reason " " line; next }
    skipped && /: Skipped$/ { reading = 1; next }
    reading && (/^[[:space:]]*$/ || /^\[/) { reading = 0; next }
    reading { line = $0; sub(/^[[:space:]]+/, "", line); reason = reason " " line }
    END { report() }
' "$junit")
[ -n "$skips" ] || exit 0
count=$(printf '%s\n' "$skips" | wc -l)

if [ "${CI:-}" = true ] || [ -n "$list" ]; then
    printf '%s\n' "$skips" | while IFS="$(printf '\t')" read -r name reason; do
        echo "skipped: $name: $reason"
    done
fi
if [ "${CI:-}" = true ] && [ -z "$list" ]; then
    echo "test-skips: FAILED: $count tests skipped; in CI every test must run" >&2
    exit 1
fi
echo "test-skips: $count tests skipped; \"$0 --list $junit\" names them with their reasons"
