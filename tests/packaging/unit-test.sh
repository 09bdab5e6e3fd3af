#!/bin/sh
# The installed systemd unit passes systemd-analyze verify. The unit names
# the service at its path on the device, so the check runs on a copy that
# names the staged executable instead; verify also treats unknown keys as
# mere warnings, so any output fails the test.
#
#   unit-test.sh PATHS_FILE
set -u
PATHS_FILE=$1
# shellcheck source-path=SCRIPTDIR source=packaging-lib.sh
. "$(dirname "$0")/packaging-lib.sh"

command -v systemd-analyze >/dev/null \
    || skip "systemd-analyze is not installed (Debian package systemd)"
make_work_dir
install_into "$WORK/stage"
mkdir "$WORK/units"
unit="$WORK/units/dbus-ex-plix.service"
sed "s|^ExecStart=$PLIX_BINDIR/|ExecStart=$STAGE$PLIX_BINDIR/|" \
    "$STAGE$PLIX_UNIT_DIR/dbus-ex-plix.service" > "$unit"
grep -qxF "ExecStart=$STAGE$PLIX_BINDIR/dbus-ex-plix -s" "$unit" \
    || fail "the unit does not start $PLIX_BINDIR/dbus-ex-plix -s"
cat "$unit"
systemd-analyze verify "$unit" > "$WORK/verify.log" 2>&1
status=$?
cat "$WORK/verify.log"
expect_equal 0 "$status"
[ -s "$WORK/verify.log" ] && fail "systemd-analyze verify complained"
echo "PASS"
