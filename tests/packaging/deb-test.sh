#!/bin/sh
# Tests of the Debian package that scripts/package.sh made from a build (the
# one .deb in the build's packages/ directory).
#
#   deb-test.sh PATHS_FILE contents   what the package declares (name,
#                                     version, architecture, the computed
#                                     dependencies, the conffiles) and carries
#                                     (the build's install layout of a Debian
#                                     system, without the development link
#                                     and the BusyBox init script)
#   deb-test.sh PATHS_FILE install    installs it with apt into a fresh
#                                     Debian 12 root, as a new user would, runs
#                                     the installed service there on the
#                                     root's own system bus and reads values
#                                     back, purges it and installs it again
#                                     while that bus runs (the build machine's
#                                     architecture only; needs root)
#
# The fresh root is a debootstrap minbase root made from this machine's
# Debian mirror, kept as a tarball in PLIX_DEB_ROOT_CACHE (default
# /var/cache/dbus-ex-plix) with the packages that apt fetched for earlier
# runs, and made anew once it is a week old. Everything the test does to a
# root happens to a copy of it inside private mount, PID, IPC and UTS
# namespaces: the machine's own root is never changed.
set -u
PATHS_FILE=$1
# shellcheck source-path=SCRIPTDIR source=packaging-lib.sh
. "$(dirname "$0")/packaging-lib.sh"

CACHE=${PLIX_DEB_ROOT_CACHE:-/var/cache/dbus-ex-plix}
SUITE=bookworm
MULTIARCH=${PLIX_LIBDIR##*/}
DEB_ARCH=$(dpkg-architecture -t"$MULTIARCH" -qDEB_HOST_ARCH 2>/dev/null)
DEB=$(ls "$BUILD_DIR"/packages/*.deb 2>/dev/null)
if [ -z "$DEB" ] || [ "$(echo "$DEB" | wc -l)" != 1 ]; then
    fail "expected one package in $BUILD_DIR/packages (scripts/package.sh makes it), found: $DEB"
fi

# What the package carries, one "MODE PATH" line a file ("MODE PATH -> TARGET"
# for a link).
LISTING=$(dpkg-deb --fsys-tarfile "$DEB" | tar -tv \
    | awk '{ mode = $1; $1 = $2 = $3 = $4 = $5 = ""; sub(/^ *\./, ""); print mode, $0 }')

carried() {
    echo "$LISTING" | cut -d' ' -f2 | grep -qxF "$1"
}

expect_carried() {
    for path in "$@"; do
        carried "$path" || fail "the package does not carry $path"
    done
}

expect_listed() {
    echo "$LISTING" | grep -qxF -- "$1" || fail "the package carries no '$1'"
}

check_control() {
    expect_equal "dbus-ex-plix_${PLIX_VERSION}_$DEB_ARCH.deb" "${DEB##*/}"
    # shellcheck disable=SC2016 # dpkg-deb's own format fields
    expect_equal "dbus-ex-plix $PLIX_VERSION $DEB_ARCH" \
        "$(dpkg-deb --showformat='${Package} ${Version} ${Architecture}' --show "$DEB")"
    depends=$(dpkg-deb --field "$DEB" Depends)
    echo "Depends: $depends"
    # The libraries the service, plixctl and both builds of libsysconfig
    # link, each with the least version that dpkg-shlibdeps found.
    for package in libc6 libgcc-s1 libstdc++6 libglib2.0-0 libssl3 libexpat1 libnl-3-200 \
                   libnl-route-3-200; do
        case ", $depends" in
            *", $package (>= "*) ;;
            *) fail "Depends names no $package with a least version" ;;
        esac
    done
    echo "$depends" | grep -qF "default-dbus-system-bus | dbus-system-bus" \
        || fail "Depends names no system bus"
    conffiles=$(dpkg-deb --ctrl-tarfile "$DEB" | tar -xOf - ./conffiles | sort)
    expected=$( (echo "$PLIX_CONFIG_DIR/plix_config.xml"
                 for store in "$SOURCE_DIR"/examples/*.json; do
                     echo "$PLIX_CONFIG_DIR/${store##*/}"
                 done) | sort)
    expect_equal "$expected" "$conffiles"
}

check_layout() {
    expect_carried "$PLIX_BINDIR/dbus-ex-plix" "$PLIX_BINDIR/plixctl" \
        "$PLIX_LIBDIR/libsysconfig.so.1.0.0" \
        "$PLIX_LIBDIR/plix/host/libsysconfig.so.1.0.0" "$PLIX_LIBDIR/plix/linux/libsysconfig.so.1.0.0" \
        "$PLIX_POLICY_DIR/com.orvanta.plix.conf" "$PLIX_UNIT_DIR/dbus-ex-plix.service" \
        /usr/lib/tmpfiles.d/dbus-ex-plix.conf \
        "$PLIX_CONFIG_DIR/plix_config.xml" \
        "$PLIX_MAN_DIR/man8/dbus-ex-plix.8.gz" "$PLIX_MAN_DIR/man1/plixctl.1.gz" \
        "$PLIX_MAN_DIR/man5/plix_config.xml.5.gz" \
        /usr/share/doc/dbus-ex-plix/copyright /usr/share/doc/dbus-ex-plix/changelog.gz \
        /usr/share/lintian/overrides/dbus-ex-plix
    expect_listed "lrwxrwxrwx $PLIX_LIBDIR/libsysconfig.so.1 -> libsysconfig.so.1.0.0"
    carried "$PLIX_LIBDIR/libsysconfig.so" && fail "the package carries the development link"
    carried "$PLIX_INIT_DIR/S60dbus-ex-plix" && fail "the package carries the BusyBox init script"
    # Only the service reads and writes the store files.
    for store in "$SOURCE_DIR"/examples/*.json; do
        expect_listed "-rw------- $PLIX_CONFIG_DIR/${store##*/}"
    done
}

# The library in ${libdir} is the build that the build installs there.
check_library() {
    make_work_dir
    dpkg-deb --extract "$DEB" "$WORK/files"
    cmp "$WORK/files$PLIX_LIBDIR/libsysconfig.so.1.0.0" \
        "$WORK/files$PLIX_LIBDIR/plix/$PLIX_SYSCONFIG_INSTALLED/libsysconfig.so.1.0.0" \
        || fail "libsysconfig.so.1 is not the $PLIX_SYSCONFIG_INSTALLED build"
}

# A minbase root of the suite, in the cache; made in the namespaces, where
# debootstrap's mounts cannot outlive it. Sets TARBALL.
make_root_tarball() {
    TARBALL="$CACHE/$SUITE-minbase-$DEB_ARCH.tar"
    [ -f "$TARBALL" ] && [ -z "$(find "$TARBALL" -mtime +6)" ] && return 0
    echo "== debootstrap --variant=minbase $SUITE into $TARBALL"
    mirror=$("$SOURCE_DIR/scripts/debian-mirror.sh" "$SUITE") || fail "no Debian mirror"
    mkdir -p "$CACHE"
    debootstrap --variant=minbase "$SUITE" "$WORK/bootstrap" "$mirror" > "$WORK/debootstrap.log" 2>&1 \
        || { tail -n 20 "$WORK/debootstrap.log"; fail "debootstrap failed"; }
    rm -f "$WORK"/bootstrap/var/cache/apt/archives/*.deb
    tar -C "$WORK/bootstrap" -cf "$TARBALL.new" . || fail "cannot write $TARBALL.new"
    mv "$TARBALL.new" "$TARBALL"
    rm -rf "$WORK/bootstrap"
}

# The root as a booted system would have it: its own /proc, /run and /tmp, a
# /dev with the machine's harmless devices, this machine's name servers, the
# cached packages, and a policy-rc.d that keeps installed services from
# starting, as an image build does.
prepare_root() {
    make_root_tarball
    ROOT=$WORK/root
    mkdir "$ROOT"
    tar -C "$ROOT" -xf "$TARBALL" || fail "cannot unpack $TARBALL"
    mount -t proc proc "$ROOT/proc"
    for dir in dev run tmp; do
        mount -t tmpfs -o mode=755 tmpfs "$ROOT/$dir"
    done
    chmod 1777 "$ROOT/tmp"
    mkdir "$ROOT/run/lock" "$ROOT/run/dbus"
    for device in null zero full random urandom; do
        touch "$ROOT/dev/$device"
        mount --bind "/dev/$device" "$ROOT/dev/$device"
    done
    mkdir -p "$CACHE/archives/partial"
    mount --bind "$CACHE/archives" "$ROOT/var/cache/apt/archives"
    cp -L /etc/resolv.conf "$ROOT/etc/resolv.conf"
    printf '#!/bin/sh\nexit 101\n' > "$ROOT/usr/sbin/policy-rc.d"
    chmod 755 "$ROOT/usr/sbin/policy-rc.d"
    cp "$DEB" "$ROOT/tmp/"
    ROOT_DEB=/tmp/${DEB##*/}
}

# Runs "$@" in the root, with a clean environment. A command started in the
# background has to be given in full (not through this function), so that
# its process id is the program's.
IN_ROOT_ENV="/usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C DEBIAN_FRONTEND=noninteractive"
# shellcheck disable=SC2086 # a command prefix
in_root() {
    chroot "$ROOT" $IN_ROOT_ENV "$@"
}

# Runs "$@" in the root; on failure shows its output and fails with $1.
in_root_or_fail() {
    what=$1
    shift
    in_root "$@" > "$WORK/step.log" 2>&1 || { cat "$WORK/step.log"; fail "$what"; }
}

# The directories that the package's tmpfiles.d file has made at boot, as
# systemd-tmpfiles would (the root has no systemd).
make_boot_directories() {
    tmpfiles="$ROOT/usr/lib/tmpfiles.d/dbus-ex-plix.conf"
    [ -f "$tmpfiles" ] || fail "the package carries no tmpfiles.d file"
    awk '$1 == "d" { print $2 }' "$tmpfiles" | while read -r dir; do
        mkdir -p "$ROOT$dir"
    done
}

start_root_bus() {
    in_root_or_fail "the root's system bus did not start" dbus-daemon --system --fork
    wait_for test -S "$ROOT/run/dbus/system_bus_socket" || fail "the root's system bus has no socket"
}

name_owned_in_root() {
    in_root dbus-send --system --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.NameHasOwner string:com.orvanta.plix | grep -q "boolean true"
}

# The installed service as its systemd unit starts it. Sets SERVICE_PID.
start_installed_service() {
    command=$(sed -n 's/^ExecStart=//p' "$ROOT$PLIX_UNIT_DIR/dbus-ex-plix.service")
    # shellcheck disable=SC2086 # a command prefix
    chroot "$ROOT" $IN_ROOT_ENV /bin/sh -c "exec $command" > "$WORK/service.log" 2>&1 &
    SERVICE_PID=$!
    wait_up_to 30 name_owned_in_root || { cat "$WORK/service.log"; fail "the service did not come up"; }
}

stop_installed_service() {
    kill "$SERVICE_PID"
    wait "$SERVICE_PID"
    status=$?
    SERVICE_PID=""
    [ "$status" -eq 0 ] || { cat "$WORK/service.log"; fail "the service ended with status $status"; }
}

# A value read with the installed plixctl as root, as a member of the group
# "plix" only, and as a user in no group, whom the bus refuses (status 2).
expect_values_read() {
    gid=$(in_root getent group plix | cut -d: -f3)
    [ -n "$gid" ] || fail "there is no group plix"
    expect_equal "ports/mainport=102" "$(in_root plixctl get ports/mainport)"
    expect_equal "ports/mainport=102" \
        "$(in_root setpriv --reuid=65534 --regid=65534 --groups="$gid" plixctl get ports/mainport)"
    in_root setpriv --reuid=65534 --regid=65534 --clear-groups plixctl get ports/mainport
    expect_equal 2 "$?"
}

# Installed where no bus runs (dpkg's maintainer scripts must not fail
# there), then run on the root's bus.
install_without_bus() {
    echo "== apt-get install $ROOT_DEB, no bus running"
    in_root_or_fail "apt-get install failed" apt-get install -y --no-install-recommends "$ROOT_DEB"
    in_root getent group plix || fail "the package made no group plix"
    make_boot_directories
    [ -L "$ROOT/etc/systemd/system/multi-user.target.wants/dbus-ex-plix.service" ] \
        || fail "the unit is not enabled"
    in_root_or_fail "plixctl check finds the installed configuration wrong" plixctl check
    start_root_bus
    start_installed_service
    expect_values_read
    stop_installed_service
}

# Purged, it leaves its group and nothing in /etc. Installed again while the
# bus runs, it asks the bus to read its policy again once the group exists:
# a bus reads the new policy file as soon as it appears, before the group is
# there, and would then not let the group's members in. The bus package's own
# trigger, which reloads it too, runs only after the install, when the
# monitor no longer listens.
reinstall_with_bus() {
    echo "== dpkg --purge dbus-ex-plix"
    in_root_or_fail "dpkg --purge failed" dpkg --purge dbus-ex-plix
    [ -e "$ROOT$PLIX_CONFIG_DIR" ] && fail "the purge left $PLIX_CONFIG_DIR"
    [ -e "$ROOT$PLIX_BINDIR/dbus-ex-plix" ] && fail "the purge left the service"
    in_root getent group plix >/dev/null || fail "the purge removed the group plix"
    in_root_or_fail "groupdel failed" groupdel plix
    echo "== dpkg --install $ROOT_DEB, the bus running"
    # shellcheck disable=SC2086 # a command prefix
    chroot "$ROOT" $IN_ROOT_ENV dbus-monitor --system > "$WORK/monitor.log" 2>&1 &
    MONITOR_PID=$!
    wait_for grep -q NameLost "$WORK/monitor.log" || { cat "$WORK/monitor.log"; fail "no bus monitor"; }
    in_root_or_fail "dpkg --install failed" dpkg --install --no-triggers "$ROOT_DEB"
    kill "$MONITOR_PID"
    wait "$MONITOR_PID"
    MONITOR_PID=""
    grep -q "member=ReloadConfig" "$WORK/monitor.log" || fail "the package did not ask the bus to reload"
    in_root_or_fail "the triggers failed" dpkg --triggers-only --pending
    start_installed_service
    expect_values_read
    stop_installed_service
}

stop_root_processes() {
    for started in ${SERVICE_PID:-} ${MONITOR_PID:-}; do
        kill "$started" 2>/dev/null
    done
    [ ! -s "$ROOT/run/dbus/pid" ] || kill "$(cat "$ROOT/run/dbus/pid")" 2>/dev/null
}

if [ "${3:-}" = "--inside" ]; then
    WORK=$4
    trap stop_root_processes EXIT
    prepare_root
    install_without_bus
    reinstall_with_bus
    echo "PASS"
    exit 0
fi

case "${2:-}" in
    contents)
        check_control
        check_layout
        check_library
        ;;
    install)
        require_root
        [ "$DEB_ARCH" = "$(dpkg --print-architecture)" ] \
            || fail "a $DEB_ARCH package does not run on this machine"
        make_work_dir
        timeout 1200 unshare --mount --pid --ipc --uts --fork --mount-proc --propagation private \
            --kill-child /bin/sh "$0" "$PATHS_FILE" install --inside "$WORK" || exit 1
        ;;
    *) fail "usage: deb-test.sh PATHS_FILE contents|install" ;;
esac
echo "PASS"
