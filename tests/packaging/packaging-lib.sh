# shellcheck shell=sh
# Shared by the packaging tests (sourced, POSIX sh). A test installs the
# build into a staging directory of its own (DESTDIR), as a device image is
# made, and checks what landed there; the tests that need a bus run the
# installed service on a private system bus inside private namespaces.
#
# The sourcing script sets, before sourcing: PATHS_FILE, the layout written by
# CMake (build directory, install directories, helper programs).

# shellcheck source=/dev/null
. "$PATHS_FILE"

SKIP_STATUS=77

fail() {
    echo "FAIL: $*"
    exit 1
}

skip() {
    echo "SKIPPED: $*"
    exit "$SKIP_STATUS"
}

# Fails unless "$2" is exactly "$1", showing both.
expect_equal() {
    [ "$2" = "$1" ] || fail "expected '$1', got '$2'"
}

# A fresh work directory, removed when the test ends. Sets WORK.
make_work_dir() {
    WORK=$(mktemp -d /tmp/plix-packaging-XXXXXX)
    trap 'rm -rf "$WORK"' EXIT
    trap 'exit 1' INT TERM HUP
}

# Polls a command for at most 10 seconds.
wait_for() {
    wait_up_to 10 "$@"
}

# Polls the command after $1 for at most $1 seconds.
wait_up_to() {
    tries=$(($1 * 10))
    shift
    until "$@" >/dev/null 2>&1; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || return 1
        sleep 0.1
    done
}

# Installs the build into $1 (DESTDIR) and sets STAGE to it; the output of
# the install is kept in $1.log.
install_into() {
    STAGE=$1
    DESTDIR=$STAGE cmake --install "$BUILD_DIR" > "$STAGE.log" 2>&1 \
        || { cat "$STAGE.log"; fail "cmake --install into $STAGE failed"; }
}

# The installed service finds its library in the staging directory only
# through the loader's search path; on the device it is in a standard libdir.
staged_environment() {
    LD_LIBRARY_PATH="$STAGE$PLIX_LIBDIR"
    export LD_LIBRARY_PATH
}

require_root() {
    [ "$(id -u)" = 0 ] || skip "needs root (private namespaces, bind mounts, other users)"
    unshare --mount --pid --fork --mount-proc true 2>/dev/null \
        || skip "unshare of mount and PID namespaces is not permitted here"
}

# The group "plix" as the bus resolves it: the machine's if it has one,
# otherwise a free group id that an added line of a private copy of
# /etc/group names "plix" (bound over /etc/group inside the namespaces, so
# the machine's own file is never changed). Sets PLIX_GID.
choose_plix_group() {
    PLIX_GID=$(getent group plix | cut -d: -f3)
    cp /etc/group "$WORK/group"
    if [ -z "$PLIX_GID" ]; then
        PLIX_GID=990
        while getent group "$PLIX_GID" >/dev/null; do
            PLIX_GID=$((PLIX_GID - 1))
        done
        echo "plix:x:$PLIX_GID:" >> "$WORK/group"
    fi
}

# Runs "$@" in private mount, IPC and PID namespaces with WORK/lock over
# /var/lock and WORK/group over /etc/group; the first process of the PID
# namespace reaps the daemon's detached child. Bounded to 60 seconds.
# shellcheck disable=SC2016 # the inner shell expands its own arguments
in_namespaces() {
    mkdir -p "$WORK/lock"
    PLIX_TEST_LOCKDIR="$WORK/lock" PLIX_TEST_REAL_LOCK=$(readlink -f /var/lock) \
        timeout 60 unshare --mount --ipc --pid --fork --mount-proc --propagation private \
        --kill-child -- "$PLIX_NS_INIT" "$WORK/ns-status" /bin/sh "$PLIX_NS_SETUP" \
        /bin/sh -c 'mount --bind "$0/group" /etc/group && exec "$@"' "$WORK" "$@"
}

# The example configuration in WORK/etc, its paths pointing there.
make_example_config() {
    mkdir -p "$WORK/etc" "$WORK/run"
    cp "$SOURCE_DIR"/examples/*.json "$WORK/etc/"
    sed -e "s|/etc/orvanta/plix/|$WORK/etc/|g" -e "s|/run/orvanta/|$WORK/run/|g" \
        "$SOURCE_DIR/examples/plix_config.xml" > "$WORK/etc/plix_config.xml"
}

# A system bus of the test's own, denying by default as a device's system
# bus does and reading the installed policy from the staged policy
# directory. Run inside the namespaces; sets BUS_PID and exports the address.
start_system_bus() {
    sed -e "s|@POLICY_DIR@|$STAGE$PLIX_POLICY_DIR|" -e "s|@ADDRESS@|unix:path=$WORK/bus|" \
        "$SYSTEM_BUS_TEMPLATE" > "$WORK/system-bus.conf"
    dbus-daemon --config-file="$WORK/system-bus.conf" --nofork --print-address=1 \
        > "$WORK/bus.address" 2> "$WORK/bus.log" &
    BUS_PID=$!
    wait_for test -s "$WORK/bus.address" || { cat "$WORK/bus.log"; fail "the bus did not start"; }
    DBUS_SYSTEM_BUS_ADDRESS="unix:path=$WORK/bus"
    export DBUS_SYSTEM_BUS_ADDRESS
}

# The bus's own method "$1" with the arguments that follow.
bus_call() {
    method=$1
    shift
    gdbus call --system --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method "org.freedesktop.DBus.$method" "$@"
}

name_owned() {
    [ "$(bus_call NameHasOwner com.orvanta.plix 2>/dev/null)" = "(true,)" ]
}

# Runs the call through the command prefix given as arguments, if any.
read_main_port() {
    "$@" gdbus call --system --dest com.orvanta.plix --object-path /plix \
        --method com.orvanta.plix.dBusAdaptor.GetIntValueTransient ports/mainport
}

# Everything a test of the installed service on its bus needs outside the
# namespaces: root, a staged install, the example configuration and the
# group "plix". The work directory is opened to other users, who must reach
# the bus socket in it.
prepare_bus_test() {
    require_root
    make_work_dir
    chmod 755 "$WORK"
    install_into "$WORK/stage"
    make_example_config
    choose_plix_group
    export WORK STAGE PLIX_GID
}

# Inside the namespaces: ends the processes started there when the test ends.
stop_started_processes() {
    for started in ${SERVICE_PID:-} ${BUS_PID:-}; do
        kill "$started" 2>/dev/null
    done
}

# The installed service in the foreground on the test's bus, serving once
# this returns. Sets SERVICE_PID.
start_service() {
    staged_environment
    "$STAGE$PLIX_BINDIR/dbus-ex-plix" -c "$WORK/etc/plix_config.xml" > "$WORK/service.log" 2>&1 &
    SERVICE_PID=$!
    wait_for read_main_port || { cat "$WORK/service.log"; fail "the service did not come up"; }
}
