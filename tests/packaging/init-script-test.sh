#!/bin/sh
# The installed BusyBox-style init script, run against a private system bus
# with the installed service. The copy that runs names the staged executable
# and the test's configuration instead of the device's paths.
#
#   init-script-test.sh PATHS_FILE CASE
#
# CASE: syntax | start-returns-once-serving | start-twice-keeps-one |
#       stop-ends-service | stop-when-not-running | start-without-bus-fails
set -u
PATHS_FILE=$1
# shellcheck source-path=SCRIPTDIR source=packaging-lib.sh
. "$(dirname "$0")/packaging-lib.sh"

INSTALLED_SCRIPT="$PLIX_INIT_DIR/S60dbus-ex-plix"

# Runs the script with "$1" and checks its whole output and its status.
expect_run() {
    output=$(sh "$WORK/S60dbus-ex-plix" "$1")
    status=$?
    expect_equal "$2" "$output"
    expect_equal "$3" "$status"
}

stage_script() {
    sed -e "s|^DAEMON=.*|DAEMON=$STAGE$PLIX_BINDIR/dbus-ex-plix|" \
        -e "s|^DAEMON_ARGS=.*|DAEMON_ARGS=\"-c $WORK/etc/plix_config.xml\"|" \
        "$STAGE$INSTALLED_SCRIPT" > "$WORK/S60dbus-ex-plix"
    staged_environment
}

service_pid() {
    cat "$WORK/lock/com.orvanta.plix.pid"
}

# The daemon is nobody's child here: it is ended by the id in its PID file.
stop_daemon() {
    [ -s "$WORK/lock/com.orvanta.plix.pid" ] && kill "$(service_pid)" 2>/dev/null
    stop_started_processes
}

run_case() {
    case "$1" in
        start-returns-once-serving)
            expect_run start "Starting dbus-ex-plix: OK" 0
            name_owned || fail "start returned before the service owned its name"
            expect_equal "(0, 102)" "$(read_main_port)"
            expect_run status "dbus-ex-plix is running (pid $(service_pid))" 0 ;;
        start-twice-keeps-one)
            expect_run start "Starting dbus-ex-plix: OK" 0
            first=$(service_pid)
            expect_run start "Starting dbus-ex-plix: already running" 0
            expect_equal "$first" "$(service_pid)"
            expect_equal "$first" "$(pgrep -x dbus-ex-plix)" ;;
        stop-ends-service)
            expect_run start "Starting dbus-ex-plix: OK" 0
            pid=$(service_pid)
            expect_run stop "Stopping dbus-ex-plix: OK" 0
            kill -0 "$pid" 2>/dev/null && fail "the service still runs"
            name_owned && fail "the name is still owned"
            expect_run status "dbus-ex-plix is stopped" 3 ;;
        stop-when-not-running)
            expect_run stop "Stopping dbus-ex-plix: not running" 0 ;;
        start-without-bus-fails)
            export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$WORK/no-bus"
            expect_run start "Starting dbus-ex-plix: FAIL" 1 ;;
        *) fail "unknown case $1" ;;
    esac
}

if [ "${2:-}" = "--inside" ]; then
    trap stop_daemon EXIT
    start_system_bus
    stage_script
    run_case "$3"
    echo "PASS"
    exit 0
fi
if [ "$2" = syntax ]; then
    make_work_dir
    install_into "$WORK/stage"
    sh -n "$STAGE$INSTALLED_SCRIPT" || fail "sh -n found a syntax error"
    echo "PASS"
    exit 0
fi
prepare_bus_test
in_namespaces /bin/sh "$0" "$PATHS_FILE" --inside "$2"
