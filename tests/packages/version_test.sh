#!/usr/bin/env bash
# The version that CMake knows is the one that is shown everywhere:
#   tests/packages/version_test.sh PROGRAM BUILD VERSION
# The log's first line and `--version` say the same text (main.cpp, tests/app/information_test.cpp).
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
program=$1
build=$2
version=$3
failed=0

# same WHAT TEXT: fails unless the text is the version.
same() {
    [ "$2" = "$version" ] && return
    echo "$1 says \"$2\" and not \"$version\"" >&2
    failed=1
}

same "velto --version" "$("$program" --version | sed -n 's/^Velto //p')"
installed=$(mktemp -d)
trap 'rm -rf "$installed"' EXIT
cmake --install "$build" --component desktop --prefix "$installed" >/dev/null
same "the metainfo" "$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$installed"/share/metainfo/*.xml)"
for page in "$installed"/share/man/man1/velto.1.gz "$installed"/share/man/es/man1/velto.1.gz; do
    same "$page" "$(gunzip -c "$page" | sed -n 's/^\.TH .*"Velto \([^"]*\)".*/\1/p')"
done
same "CPack" "$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' "$build/CPackConfig.cmake")"
same "the page's package" "$(sed -n '0,/"version"/s/.*"version": "\(.*\)",/\1/p' "$root/resources/package.json")"
same "the lock of the page's packages" "$(sed -n '0,/"version"/s/.*"version": "\(.*\)",/\1/p' "$root/resources/package-lock.json")"
# A Mac's list and the tags take it from CMake; nobody has written it there by hand.
grep -qF "@PROJECT_VERSION@" "$root/packaging/macos/Info.plist.in" || same Info.plist.in "a text of its own"
exit $failed
