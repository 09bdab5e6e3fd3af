#!/bin/sh
# Installs the Debian 12 packages that building, running and testing
# dbus-ex-plix need, and only those that are missing: every test must be able
# to run, so the tools a test would otherwise skip without are here too.
#   systemd     systemd-analyze, which checks the unit file (without
#               systemd-sysv it is not made the init system)
#   strace      the test of the system calls of a persistent commit
#   clang-tidy, clang-format, cppcheck, git: the static checks (lint.sh)
#   dpkg-dev, file, lintian: the Debian packages and their check (package.sh)
#   debootstrap, debian-archive-keyring: the fresh Debian root that the
#               package is installed into (tests/packaging/deb-test.sh)
set -eu

packages="cmake make g++ clang pkg-config libglib2.0-dev libglib2.0-bin \
libexpat1-dev libssl-dev nlohmann-json3-dev libgtest-dev libgmock-dev \
dbus-daemon dbus-bin util-linux procps psmisc openssl libclang-rt-14-dev \
libnl-3-dev libnl-route-3-dev iproute2 mandoc man-db systemd strace clang-tidy \
clang-format cppcheck git dpkg-dev file lintian debootstrap debian-archive-keyring $*"

missing=""
for p in $packages; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0

sudo=""
[ "$(id -u)" = 0 ] || sudo="sudo"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends $missing
