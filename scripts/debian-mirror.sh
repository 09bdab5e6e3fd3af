#!/bin/sh
# Prints the Debian mirror that this machine's apt uses for a suite (default
# bookworm), as apt itself resolved it from its sources (either file format),
# so that no host name is written anywhere else.
#
#   debian-mirror.sh [SUITE]
set -eu
suite=${1:-bookworm}
sudo=""
[ "$(id -u)" = 0 ] || sudo="sudo"

# shellcheck disable=SC2016 # apt's own format fields
apt_mirror()
{
    apt-get indextargets --format '$(RELEASE) $(REPO_URI)' \
        | awk -v s="$suite" '$1 == s && !found { print $2; found = 1 }'
}

mirror=$(apt_mirror)
if [ -z "$mirror" ]; then
    $sudo apt-get -o DPkg::Lock::Timeout=600 update >&2
    mirror=$(apt_mirror)
fi
[ -n "$mirror" ] || { echo "debian-mirror: no '$suite' suite in this machine's apt sources" >&2; exit 1; }
echo "$mirror"
