#!/usr/bin/env bash
# The life of the package on a pristine Debian, as root:
#   tests/packages/debian.sh RELEASE ARCHIVE DATE [DEB NEXT_DEB]
# RELEASE is "bookworm" or "trixie"; ARCHIVE the source archive of `./dev package`, DATE its sources'
# (SOURCE_DATE_EPOCH). The package, and one with the next number, are built from it in a tree of that
# release, without a network, unless both are given. Needs debootstrap, and a machine that lets root make
# mounts.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
# shellcheck source=/dev/null
. "$root/tests/packages/tree.sh"
release=$1
archive=$2
date=$3

say() { printf '==> %s\n' "$*"; }

say "The tree of $release"
pristine_tree "$release"

if [ $# -lt 5 ]; then
    building=$(layer "$release" building)
    # shellcheck disable=SC1091,SC2154
    needed=$(. "$root/tools/packages.sh" && echo "${debian_build[*]} ${debian_package[*]}")
    say "What building needs"
    # shellcheck disable=SC2086
    enter "$building" sh -euc 'apt-get -q update && apt-get -q install -y --no-install-recommends "$@"' \
        sh $needed >"$building/apt.log" 2>&1 || { tail -n 20 "$building/apt.log" && exit 1; }
    say "Building without a network"
    cp "$archive" "$building/shared/source.tar.xz"
    cp "$root/tests/packages/build_in_tree.sh" "$building/shared/"
    enter "$building" WITHOUT_NETWORK env SOURCE_DATE_EPOCH="$date" /shared/build_in_tree.sh
    set -- "$release" "$archive" "$date" "$building"/shared/packages/1/*.deb "$building"/shared/packages/2/*.deb
fi

trying=$(layer "$release" trying)
rm -rf "$trying"
trying=$(layer "$release" trying)
mkdir -p "$trying/shared"
cp "$4" "$trying/shared/velto.deb"
cp "$5" "$trying/shared/next.deb"
cp "$root"/tests/packages/{life_in_tree,as_user_in_tree}.sh "$trying/shared/"
status=0
enter "$trying" /shared/life_in_tree.sh || status=$?
# What a step that was cut off has left of its control groups.
for group in /sys/fs/cgroup/velto-try /sys/fs/cgroup/*/velto-try; do
    [ ! -d "$group" ] || find "$group" -depth -type d -exec rmdir {} + 2>/dev/null || true
done
rm -rf "$trying/changed" "$trying/work"
exit $status
