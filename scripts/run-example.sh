#!/bin/sh
# Builds dbus-ex-plix and shows it at work on the example configuration:
# a private system bus of its own, the service in private namespaces, a
# short client session, then both stopped again. Nothing of the machine is
# touched: not its bus, not /var/lock, not its DHCP client (a fake killall
# stands first in the service's PATH and the example keeps DHCP off).
set -eu
cd "$(dirname "$0")/.."
ROOT=$(pwd)

./scripts/install-deps.sh
cmake -S . -B build
cmake --build build -j"$(nproc)" --target dbus-ex-plix plixctl

if [ "$(id -u)" != 0 ]; then
    echo "The service is built (build/service/dbus-ex-plix), but running the example needs"
    echo "root: it runs the service in private mount, IPC and PID namespaces (unshare) with"
    echo "its own directory bind-mounted over /var/lock, so that its PID file, its"
    echo "semaphore and what its network action may kill stay apart from this machine."
    echo "Run it again as root, e.g.: sudo ./scripts/run-example.sh"
    exit 1
fi

WORK=$(mktemp -d /tmp/plix-example-XXXXXX)
ADDRESS="unix:path=$WORK/bus"
BUS_PID=""
SERVICE_PID=""
finish() {
    [ -n "$SERVICE_PID" ] && kill -KILL "$SERVICE_PID" 2>/dev/null
    [ -n "$BUS_PID" ] && kill "$BUS_PID" 2>/dev/null
    rm -rf "$WORK"
}
trap finish EXIT
trap 'exit 1' INT TERM HUP PIPE

# Polls a command for at most 10 seconds.
wait_for() {
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        if [ "$tries" -ge 100 ]; then
            return 1
        fi
        sleep 0.1
    done
}

step() {
    printf '\n==== %s\n' "$*"
}

# The example configuration in a directory of its own, its paths pointing there.
mkdir -p "$WORK/etc" "$WORK/run" "$WORK/lock" "$WORK/bin"
cp examples/*.json "$WORK/etc/"
sed -e "s|/etc/orvanta/plix/|$WORK/etc/|g" -e "s|/run/orvanta/|$WORK/run/|g" \
    examples/plix_config.xml > "$WORK/etc/plix_config.xml"
printf '#!/bin/sh\necho "killall $*" >> "%s/killall.log"\n' "$WORK" > "$WORK/bin/killall"
chmod 755 "$WORK/bin/killall"

step "Private system bus on $ADDRESS"
dbus-daemon --config-file="$ROOT/examples/bus.conf" --address="$ADDRESS" --nofork \
    --print-address=1 > "$WORK/bus.address" 2> "$WORK/bus.log" &
BUS_PID=$!
wait_for test -s "$WORK/bus.address" || { echo "the bus did not start"; cat "$WORK/bus.log"; exit 1; }

bus() {
    gdbus call --address "$ADDRESS" --dest org.freedesktop.DBus \
        --object-path /org/freedesktop/DBus --method "org.freedesktop.DBus.$@"
}
probe() {
    gdbus call --address "$ADDRESS" --dest com.orvanta.plix --object-path /plix \
        --method com.orvanta.plix.dBusAdaptor.GetIntValueTransient probe/none
}
# The client session uses plixctl, the command-line client a device's
# scripts and people at its console use. It reports a refusal on standard
# error and in its exit status; the example goes on after it.
plixctl() {
    echo "\$ plixctl $*"
    "$ROOT/build/tools/plixctl/plixctl" --address "$ADDRESS" "$@" || echo "(exit status $?)"
}

step "dbus-ex-plix -s -c $WORK/etc/plix_config.xml"
DBUS_SYSTEM_BUS_ADDRESS="$ADDRESS" PATH="$WORK/bin:$PATH" LC_ALL=C \
    PLIX_TEST_LOCKDIR="$WORK/lock" PLIX_TEST_REAL_LOCK="$(readlink -f /var/lock)" \
    unshare --mount --ipc --pid --fork --mount-proc --propagation private --kill-child -- \
    /bin/sh "$ROOT/tests/integration/plix-ns-setup.sh" \
    "$ROOT/build/service/dbus-ex-plix" -s -c "$WORK/etc/plix_config.xml" \
    > "$WORK/service.log" 2>&1 &
SERVICE_PID=$!
wait_for bus GetNameOwner com.orvanta.plix && wait_for probe \
    || { echo "the service did not come up:"; cat "$WORK/service.log"; exit 1; }
echo "serving; its PID file says: $(cat "$WORK/lock/com.orvanta.plix.pid")"

step "The declared values, and transient reads (no transaction needed)"
plixctl list
plixctl get station/name ports/mainport eth0/ipaddress
plixctl get ports/nothing

step "Store files before the transaction"
cat "$WORK/etc/panel.json" "$WORK/etc/ports.json"

step "A persistent transaction setting three values"
plixctl set display/brightness=55 station/name=Lab-Panel-07 ports/mainport=2000

step "Store files after it, and the file the brightness action wrote"
cat "$WORK/etc/panel.json" "$WORK/etc/ports.json"
echo "run/brightness: $(cat "$WORK/run/brightness")"

step "A rejected transaction: main port equal to the HTTP port (203), rolled back"
plixctl set ports/mainport=80
plixctl get ports/mainport

step "A password set, then verified (equal, then different)"
echo new-secret | plixctl set remoteaccess/accesscontrolPassword1=-
echo new-secret | plixctl verify remoteaccess/accesscontrolPassword1 -
echo secret1 | plixctl verify remoteaccess/accesscontrolPassword1 -
echo "stored form: $(grep accesscontrolPassword1 "$WORK/etc/remoteaccess.json")"

step "Stopping the service with SIGTERM"
OWNER=$(bus GetNameOwner com.orvanta.plix | sed "s/^('\\(.*\\)',)$/\\1/")
PID=$(bus GetConnectionUnixProcessID "$OWNER" | sed 's/^(uint32 \([0-9]*\),)$/\1/')
kill -TERM "$PID"
STATUS=0
wait "$SERVICE_PID" || STATUS=$?
SERVICE_PID=""
echo "exit status: $STATUS"
echo "what the fake killall was asked: $(cat "$WORK/killall.log" 2>/dev/null || echo nothing)"

step "The service's output"
cat "$WORK/service.log"

kill "$BUS_PID"
wait "$BUS_PID" 2>/dev/null || true
BUS_PID=""
echo
echo "Done: the bus is stopped, $WORK is removed."
