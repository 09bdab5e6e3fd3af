#!/bin/sh
# The manual pages: mandoc finds nothing to complain about in their sources
# (style included), and man renders each installed page with its name
# section and without a warning of the formatter.
#
#   man-test.sh PATHS_FILE CASE
#
# CASE: lint | render
set -u
PATHS_FILE=$1
# shellcheck source-path=SCRIPTDIR source=packaging-lib.sh
. "$(dirname "$0")/packaging-lib.sh"

PAGES="man8/dbus-ex-plix.8 man1/plixctl.1 man5/plix_config.xml.5"

lint() {
    command -v mandoc >/dev/null || skip "mandoc is not installed (Debian package mandoc)"
    for page in $PAGES; do
        mandoc -T lint "$SOURCE_DIR/man/${page#*/}" || fail "mandoc -T lint complains about $page"
    done
}

render() {
    command -v man >/dev/null || skip "man is not installed (Debian package man-db)"
    make_work_dir
    install_into "$WORK/stage"
    for page in $PAGES; do
        name=${page#*/}
        MANWIDTH=80 man -l "$STAGE$PLIX_MAN_DIR/$page$PLIX_MAN_SUFFIX" \
            > "$WORK/page.txt" 2> "$WORK/page.err"
        status=$?
        cat "$WORK/page.err"
        expect_equal 0 "$status"
        [ -s "$WORK/page.err" ] && fail "man warned while rendering $page"
        grep -qx "NAME" "$WORK/page.txt" || fail "$page renders without a NAME section"
        grep -q "^ *${name%.*} - " "$WORK/page.txt" || fail "$page does not name ${name%.*}"
        echo "$page: $(wc -l < "$WORK/page.txt") lines"
    done
}

case "$2" in
    lint) lint ;;
    render) render ;;
    *) fail "unknown case $2" ;;
esac
echo "PASS"
