#!/usr/bin/env bash
# The packages come out the same when they are built again, somewhere else and from the source archive:
#   tests/packages/reproducible.sh FOLDER
# FOLDER has the packages and the archive of `./dev package`. They are compiled anew, without a cache.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
made=$(cd "$1" && pwd)
work=$root/build/again/in-another-folder
rm -rf "$work"
mkdir -p "$work"
tar -x -C "$work" -f "$made"/velto-*.tar.xz
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git -C "$root" log -1 --format=%ct)}
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1
(
    cd "$work"/velto-*
    # shellcheck disable=SC2030,SC2034
    root=$PWD logs=$PWD/build/logs
    mkdir -p "$logs"
    # shellcheck source=/dev/null
    . tools/common.sh
    # shellcheck source=/dev/null
    . tools/package.sh
    package_linux build/package
)
different=0
for package in "$made"/*.deb "$made"/*.rpm; do
    again=$(echo "$work"/velto-*/build/package/packages/"$(basename "$package")")
    if cmp -s "$package" "$again"; then
        echo "    the same: $(sha256sum <"$package" | cut -c 1-16) $(basename "$package")"
    else
        echo "different: $package $again" >&2
        different=1
    fi
done
[ $different -eq 0 ] && rm -rf "$work"
exit $different
