#!/bin/sh
# dpkg-shlibdeps for a cross build: the libraries that the device's programs
# link, and the dpkg database that tells which package provides each of
# them, are the sysroot's (scripts/arm-build.sh records its packages there).
#
#   cross-shlibdeps.sh SYSROOT DEB_ARCH MULTIARCH [dpkg-shlibdeps arguments]
set -eu
sysroot=$1
arch=$2
multiarch=$3
shift 3

# dpkg-shlibdeps finds a library under the sysroot and asks the database
# which package holds that path, so the copy of the database it reads names
# the packages' files with the sysroot in front.
admin=$(mktemp -d)
trap 'rm -rf "$admin"' EXIT
mkdir "$admin/info" "$admin/updates"
cp "$sysroot/var/lib/dpkg/status" "$admin/status"
for file in "$sysroot"/var/lib/dpkg/info/*; do
    case $file in
    *.list) sed "s|^/|$sysroot/|" "$file" > "$admin/info/${file##*/}" ;;
    *) ln -s "$file" "$admin/info/" ;;
    esac
done

# The C library's package has its files under /lib, the others under /usr/lib.
DEB_HOST_ARCH=$arch dpkg-shlibdeps --admindir="$admin" \
    -l"$sysroot/lib/$multiarch" -l"$sysroot/usr/lib/$multiarch" "$@"
