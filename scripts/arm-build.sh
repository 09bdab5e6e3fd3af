#!/bin/bash
# Cross-builds dbus-ex-plix for the 32-bit ARM device (armhf) on Debian 12,
# runs its unit tests under qemu-arm and prints the stripped sizes of what
# goes onto the device.
#
#   ./scripts/arm-build.sh [cmake --build arguments, e.g. --target common_tests]
#
# Environment:
#   PLIX_ARM_SYSROOT  armhf sysroot to use or make (default build-arm/sysroot)
#   PLIX_ARM_BUILD    build directory (default build-arm)
#
# The sysroot is made once with debootstrap and kept; delete it to remake it.
# Debian multiarch (armhf -dev packages installed on the host) is not used:
# its armhf indexes can lag behind the host's and leave apt unresolvable.
set -Eeuo pipefail

cd "$(dirname "$0")/.."
top=$(pwd)
build=${PLIX_ARM_BUILD:-$top/build-arm}
sysroot=${PLIX_ARM_SYSROOT:-$build/sysroot}
suite=bookworm
triplet=arm-linux-gnueabihf
sysroot_packages="libglib2.0-dev,libssl-dev,libexpat1-dev,libgtest-dev,\
libgmock-dev,nlohmann-json3-dev,libnl-3-dev,libnl-route-3-dev"
# Changed when the sysroot's making changes, so that an older one is remade.
sysroot_format="dpkg-database"
host_packages="g++-arm-linux-gnueabihf binutils-arm-linux-gnueabihf \
qemu-user debootstrap debian-archive-keyring cmake make pkg-config \
libglib2.0-dev-bin"

sudo=""
[ "$(id -u)" = 0 ] || sudo="sudo"

fail()
{
    echo "arm-build: FAILED: $*" >&2
    exit 1
}
trap 'fail "line $LINENO: $BASH_COMMAND"' ERR

step()
{
    echo "==== arm-build: $*"
}

install_host_tools()
{
    local missing="" p
    for p in $host_packages; do
        [ "$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)" = "install ok installed" ] \
            || missing="$missing $p"
    done
    [ -z "$missing" ] && return 0
    step "installing$missing"
    $sudo apt-get -o DPkg::Lock::Timeout=600 update
    DEBIAN_FRONTEND=noninteractive $sudo apt-get -o DPkg::Lock::Timeout=600 \
        install -y --no-install-recommends $missing
}

# Packages link libfoo.so to /lib/...; seen from the build machine such a link
# points outside the sysroot, and the linker would silently fall back to the
# static archive. Point every one of them back into the sysroot.
relink_absolute_symlinks()
{
    local link
    find "$sysroot/usr" "$sysroot/lib" -type l -lname '/*' -print0 \
        | while IFS= read -r -d '' link; do
              ln -sfnr "$sysroot$(readlink "$link")" "$link"
          done
}

# Records a package unpacked into the sysroot in the sysroot's dpkg database
# as dpkg itself would (status entry, file list, symbols and shlibs files),
# marked unpacked: dpkg-shlibdeps reads there which package, from which
# version on, provides each library the device's programs link.
register_package()
{
    local deb=$1 admin="$sysroot/var/lib/dpkg" control name f
    control=$(mktemp -d)
    dpkg-deb --control "$deb" "$control"
    name=$(dpkg-deb --field "$deb" Package)
    # dpkg names the files of a package that may be installed once per
    # architecture with that architecture.
    [ "$(dpkg-deb --field "$deb" Multi-Arch)" != same ] || name="$name:armhf"
    sed '/^Package:/a Status: install ok unpacked' "$control/control" >> "$admin/status"
    echo >> "$admin/status"
    dpkg-deb --fsys-tarfile "$deb" | tar -t | sed -e 's|^\./|/|' -e 's|^/$|/.|' -e 's|/$||' \
        > "$admin/info/$name.list"
    for f in symbols shlibs; do
        [ ! -f "$control/$f" ] || cp "$control/$f" "$admin/info/$name.$f"
    done
    rm -rf "$control"
}

# A self-consistent armhf sysroot: every package of one suite at matching
# versions, unpacked but never configured (nothing in it is executed except
# through qemu-arm -L).
make_sysroot()
{
    local stamp="$sysroot/.plix-sysroot" mirror deb
    if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$suite $sysroot_packages $sysroot_format" ]; then
        step "sysroot $sysroot present"
        return 0
    fi
    mirror=$("$top/scripts/debian-mirror.sh" "$suite")
    step "making armhf sysroot $sysroot from $mirror"
    $sudo rm -rf "$sysroot"
    mkdir -p "$(dirname "$sysroot")"
    $sudo debootstrap --arch=armhf --foreign --variant=minbase \
        --include="$sysroot_packages" "$suite" "$sysroot" "$mirror"
    for deb in "$sysroot"/var/cache/apt/archives/*.deb; do
        $sudo dpkg-deb -x "$deb" "$sysroot"
    done
    [ -z "$sudo" ] || $sudo chown -R "$(id -u):$(id -g)" "$sysroot"
    mkdir -p "$sysroot/var/lib/dpkg/info"
    : > "$sysroot/var/lib/dpkg/status"
    # The database's layout with architecture-qualified file names.
    echo 1 > "$sysroot/var/lib/dpkg/info/format"
    for deb in "$sysroot"/var/cache/apt/archives/*.deb; do
        register_package "$deb"
    done
    $sudo rm -f "$sysroot"/var/cache/apt/archives/*.deb
    relink_absolute_symlinks
    echo "$suite $sysroot_packages $sysroot_format" > "$stamp"
}

cross_build()
{
    step "configuring $build"
    cmake -S "$top" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_TOOLCHAIN_FILE="$top/cmake/$triplet.cmake" \
        -DPLIX_ARM_SYSROOT="$sysroot"
    step "building (-j2)"
    cmake --build "$build" -j2 "$@"
}

# ctest starts each test binary through qemu-arm, but some tests exec an ARM
# program themselves (death tests re-executing the test binary, helper
# programs they start). The kernel runs those through qemu-arm only with a
# binfmt_misc entry; when the machine has none, one is registered for the
# test run and removed afterwards. QEMU_LD_PREFIX gives such a nested
# qemu-arm the sysroot.
binfmt_dir=/proc/sys/fs/binfmt_misc
binfmt_entry=plix-qemu-arm
binfmt_mounted=""

arm_exec_works()
{
    "$build/tests/common/common_tests" --gtest_list_tests > /dev/null 2>&1
}

release_arm_exec()
{
    [ ! -e "$binfmt_dir/$binfmt_entry" ] || echo -1 | $sudo tee "$binfmt_dir/$binfmt_entry" > /dev/null
    [ -z "$binfmt_mounted" ] || $sudo umount "$binfmt_dir"
}

enable_arm_exec()
{
    local magic='\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x28\x00'
    local mask='\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
    export QEMU_LD_PREFIX="$sysroot"
    arm_exec_works && return 0
    step "registering qemu-arm with binfmt_misc for the test run"
    if [ ! -e "$binfmt_dir/register" ]; then
        $sudo mount -t binfmt_misc binfmt_misc "$binfmt_dir"
        binfmt_mounted=yes
    fi
    trap release_arm_exec EXIT
    printf '%s' ":$binfmt_entry:M::$magic:$mask:$(command -v qemu-arm):" \
        | $sudo tee "$binfmt_dir/register" > /dev/null
    arm_exec_works || fail "ARM programs still do not run through binfmt_misc"
}

# Unit tests only: the integration tests need a system bus and namespaces
# that user-mode emulation does not provide. The unit tests that skip under
# emulation are listed with their reasons.
run_unit_tests()
{
    local results="$build/Testing/ctest-results.xml"
    enable_arm_exec
    step "running unit tests under qemu-arm"
    ctest --test-dir "$build" --output-on-failure -j2 --timeout 600 -LE integration \
        --output-junit "$results"
    "$top/scripts/test-skips.sh" --list "$results"
}

# The programs and shared libraries of this tree that go onto the device:
# every ELF file built outside the tests, the sysroot and CMake's own files.
device_files()
{
    local f
    find "$build" \( -path "$sysroot" -o -path "$build/tests" -o -name CMakeFiles \) -prune \
         -o -type f \( -name 'lib*.so.*' -o -perm -u+x \) -print | sort \
        | while IFS= read -r f; do
              [ "$(head -c 4 "$f" | od -An -c | tr -d ' ')" != '177ELF' ] || echo "$f"
          done
}

# Sizes as on the device: stripped copies, so debug information is left out.
print_sizes()
{
    local tmp f
    tmp=$(mktemp -d)
    step "stripped sizes (bytes)"
    while IFS= read -r f; do
        cp "$f" "$tmp/part"
        $triplet-strip "$tmp/part"
        printf '%10d  %s\n' "$(stat -c %s "$tmp/part")" "${f#"$build"/}"
    done < <(device_files)
    rm -rf "$tmp"
}

install_host_tools
make_sysroot
cross_build "$@"
if [ $# -eq 0 ]; then
    run_unit_tests
    [ -x "$build/service/dbus-ex-plix" ] || fail "no ARM executable service/dbus-ex-plix"
fi
print_sizes
step "done"
