#!/bin/sh
# The installed layout of a device image, staged with DESTDIR.
#
#   install-test.sh PATHS_FILE CASE
#
# CASE: layout | keeps-configuration | service-finds-library
set -u
PATHS_FILE=$1
# shellcheck source-path=SCRIPTDIR source=packaging-lib.sh
. "$(dirname "$0")/packaging-lib.sh"

expect_file() {
    [ -f "$STAGE$1" ] || fail "missing: $1"
}

expect_mode() {
    expect_equal "$1 $2" "$(stat -c %a "$STAGE$2") $2"
}

expect_line() {
    grep -qxF "$2" "$STAGE$1" || fail "$1 lacks the line '$2'"
}

layout() {
    echo "Installed:"
    (cd "$STAGE" && find . ! -type d | sort)
    expect_file "$PLIX_BINDIR/dbus-ex-plix"
    [ -x "$STAGE$PLIX_BINDIR/dbus-ex-plix" ] || fail "dbus-ex-plix is not executable"
    expect_file "$PLIX_LIBDIR/libsysconfig.so.1.0.0"
    expect_equal libsysconfig.so.1.0.0 "$(readlink "$STAGE$PLIX_LIBDIR/libsysconfig.so.1")"
    expect_equal libsysconfig.so.1 "$(readlink "$STAGE$PLIX_LIBDIR/libsysconfig.so")"
    expect_file "$PLIX_LIBDIR/plix/host/libsysconfig.so.1.0.0"
    expect_file "$PLIX_POLICY_DIR/com.orvanta.plix.conf"
    expect_line "$PLIX_UNIT_DIR/dbus-ex-plix.service" "ExecStart=$PLIX_BINDIR/dbus-ex-plix -s"
    expect_line "$PLIX_INIT_DIR/S60dbus-ex-plix" "DAEMON=$PLIX_BINDIR/dbus-ex-plix"
    expect_mode 755 "$PLIX_INIT_DIR/S60dbus-ex-plix"
    expect_mode 644 "$PLIX_CONFIG_DIR/plix_config.xml"
    for store in factory network panel ports remoteaccess; do
        expect_mode 600 "$PLIX_CONFIG_DIR/$store.json"
    done
    for page in man8/dbus-ex-plix.8 man1/plixctl.1 man5/plix_config.xml.5; do
        expect_file "$PLIX_MAN_DIR/$page$PLIX_MAN_SUFFIX"
    done
}

keeps_configuration() {
    config="$STAGE$PLIX_CONFIG_DIR"
    echo "<!-- changed on the device -->" >> "$config/plix_config.xml"
    echo '{"changed": true}' > "$config/network.json"
    cp "$config/plix_config.xml" "$WORK/config.before"
    install_into "$WORK/stage"
    cat "$STAGE.log"
    cmp -s "$WORK/config.before" "$config/plix_config.xml" || fail "plix_config.xml was overwritten"
    expect_equal '{"changed": true}' "$(cat "$config/network.json")"
    grep -qxF -- "-- Keeping the configuration in $config" "$STAGE.log" \
        || fail "the second install did not say that it keeps the configuration"
}

# The libraries the loader gives a program, as ldd lists them. The build
# machine's ldd cannot read a cross-built program: its own loader, run by the
# emulator, lists them instead.
loaded_libraries() {
    if [ -n "$PLIX_EMULATOR" ]; then
        $PLIX_EMULATOR -E LD_TRACE_LOADED_OBJECTS=1 "$1"
    else
        ldd "$1"
    fi
}

# No run path into the build tree: the installed service takes the library
# from the loader's search path, which here is the staged libdir.
service_finds_library() {
    service="$STAGE$PLIX_BINDIR/dbus-ex-plix"
    if readelf -d "$service" | grep -E 'R(UN)?PATH' | grep -qF "$BUILD_DIR"; then
        fail "the installed service keeps a run path into the build tree"
    fi
    staged_environment
    loaded_libraries "$service" | grep -F libsysconfig.so.1
    loaded_libraries "$service" | grep -qF "libsysconfig.so.1 => $STAGE$PLIX_LIBDIR/libsysconfig.so.1 " \
        || fail "the installed service does not take the staged libsysconfig.so.1"
}

make_work_dir
install_into "$WORK/stage"
case "$2" in
    layout) layout ;;
    keeps-configuration) keeps_configuration ;;
    service-finds-library) service_finds_library ;;
    *) fail "unknown case $2" ;;
esac
echo "PASS"
