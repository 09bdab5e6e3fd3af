#!/bin/sh
# Builds the Debian packages of dbus-ex-plix and checks them with lintian:
#
#   build/packages/dbus-ex-plix_<version>_amd64.deb      the native build (build/)
#   build-arm/packages/dbus-ex-plix_<version>_armhf.deb  the 32-bit ARM cross build
#                                                         (build-arm/), whose
#                                                         libsysconfig.so.1 is the
#                                                         linux build
#
# Both build directories are reused as they are, the ARM one made by
# scripts/arm-build.sh (sysroot included) when it is missing; only the
# options of a Debian system's layout are added to their configuration.
# lintian must find no error and no warning that the package's override
# file (packaging/debian/lintian-overrides) does not explain.
set -eu
cd "$(dirname "$0")/.."
top=$(pwd)
./scripts/install-deps.sh

deb_options="-DCMAKE_INSTALL_PREFIX=/usr -DPLIX_MAN_GZIP=ON"
# CMake gives a cross build no multiarch library directory of its own.
arm_libdir=lib/arm-linux-gnueabihf

# Configures, builds and packages the build directory $1 with the cmake
# options that follow.
package()
{
    build=$1
    shift
    # shellcheck disable=SC2086 # a list of options
    cmake -S "$top" -B "$build" $deb_options "$@" >/dev/null
    cmake --build "$build" -j2
    rm -rf "$build/packages"
    cpack --config "$build/CPackConfig.cmake"
}

echo "==== package: native build"
package build -DCMAKE_BUILD_TYPE=RelWithDebInfo
echo "==== package: 32-bit ARM build"
# Makes or refreshes the sysroot and the build; runs no test.
./scripts/arm-build.sh --target all
package build-arm -DCMAKE_INSTALL_LIBDIR=$arm_libdir -DPLIX_SYSCONFIG_INSTALLED=linux

status=0
for deb in build/packages/*.deb build-arm/packages/*.deb; do
    echo "==== package: lintian $deb"
    lintian --fail-on error,warning --display-info "$deb" || status=1
done
[ "$status" -eq 0 ] || { echo "package: FAILED: lintian"; exit 1; }
ls build/packages/*.deb build-arm/packages/*.deb
