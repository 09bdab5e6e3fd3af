#!/bin/sh
# The installed bus policy on a bus that denies by default, with the
# installed service running as root: who may call it and who may own its
# name.
#
#   bus-policy-test.sh PATHS_FILE CASE
#
# CASE: root-call-succeeds | unprivileged-call-refused |
#       plix-member-call-succeeds | plix-member-control-refused |
#       unprivileged-own-refused | plix-member-own-refused
set -u
PATHS_FILE=$1
# shellcheck source-path=SCRIPTDIR source=packaging-lib.sh
. "$(dirname "$0")/packaging-lib.sh"

# Command prefixes that run a call as the user nobody, without groups or in
# the group "plix" only; split into words on purpose where used.
NOBODY="setpriv --reuid=65534 --regid=65534 --clear-groups"
PLIX_MEMBER="setpriv --reuid=65534 --regid=65534 --groups=${PLIX_GID:-}"

# Each of these runs its call through the command prefix given as arguments.
call_control() {
    "$@" gdbus call --system --dest com.orvanta.plix --object-path /ctrl \
        --method com.orvanta.dbus.Init
}

own_name() {
    "$@" gdbus call --system --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.RequestName com.orvanta.plix 4
}

# Runs "$@", which the bus must refuse.
expect_refused() {
    if "$@" > "$WORK/call.log" 2>&1; then
        cat "$WORK/call.log"
        fail "the bus let it through: $*"
    fi
    cat "$WORK/call.log"
    grep -qF "org.freedesktop.DBus.Error.AccessDenied" "$WORK/call.log" \
        || fail "refused, but not by the bus's policy"
}

# shellcheck disable=SC2086
run_case() {
    case "$1" in
        root-call-succeeds) expect_equal "(0, 102)" "$(read_main_port)" ;;
        unprivileged-call-refused) expect_refused read_main_port $NOBODY ;;
        plix-member-call-succeeds) expect_equal "(0, 102)" "$(read_main_port $PLIX_MEMBER)" ;;
        plix-member-control-refused) expect_refused call_control $PLIX_MEMBER ;;
        unprivileged-own-refused) expect_refused own_name $NOBODY ;;
        plix-member-own-refused) expect_refused own_name $PLIX_MEMBER ;;
        *) fail "unknown case $1" ;;
    esac
    name_owned || fail "the service lost its name"
}

if [ "${2:-}" = "--inside" ]; then
    trap stop_started_processes EXIT
    start_system_bus
    start_service
    run_case "$3"
    echo "PASS"
    exit 0
fi
prepare_bus_test
in_namespaces /bin/sh "$0" "$PATHS_FILE" --inside "$2"
