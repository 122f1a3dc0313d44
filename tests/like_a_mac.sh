#!/usr/bin/env bash
# Runs the tests that work on files on two volumes that take names as a Mac's do: only UTF-8, and two
# spellings of one text are one name. The volumes are mounted for this process alone.
#
#   like_a_mac.sh BUILD [GTEST-ARGUMENT...]   BUILD is a folder with the built tests, as build/debug
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
if [ -z "${VELTO_PRIVATE_MOUNTS:-}" ]; then
    export VELTO_PRIVATE_MOUNTS=1
    [ "$(id -u)" -eq 0 ] && exec unshare -m "$0" "$@"
    exec unshare -rm "$0" "$@"
fi
build=$(realpath "$1")
shift

scratch=$(mktemp -d)
chmod 755 "$scratch"  # some tests act as an ordinary user
mkdir "$scratch"/{one,other,kept,kept-other}

# mount_volume FOLDER MOUNTPOINT
mount_volume() {
    head -c 64 /dev/zero >"$1.faults"
    mkfifo "$2.mounted"
    "$build/tests/velto-passing-volume" "$1" "$2" "$1.faults" \
        folds-names text-names keeps-holes for-all >"$2.mounted" &
    [ "$(head -c 1 "$2.mounted")" = m ] || {
        echo "no volume can be mounted here" >&2
        exit 1
    }
}

# shellcheck disable=SC2317  # the trap calls it
finish() {
    cd /
    umount -l "$scratch/one" "$scratch/other" 2>/dev/null || true
    rm -rf "$scratch"
}
trap finish EXIT
mount_volume "$scratch/kept" "$scratch/one"
mount_volume "$scratch/kept-other" "$scratch/other"

# Not what a Mac does not run. Nor paths as long as they get: the volume spells every one from its root
# on, and has no room for those. Nor what kills a program at each of its calls: another folder's business.
left_out='*TreeDeeper*:*Of2000Levels*:*AsDeepAsTheyGet*:*OfAnyLength*:*100000Bytes*:TreeWalkDepth*:*Crash*:*Fault*'
# Linux copies between two such volumes inside the kernel, in one go; a Mac does not.
left_out+=':ChangingSource.ABigFileThatBecomesShorterWhileItIsCopiedStays'
while read -r suite; do
    left_out+=":*$suite.*"
done < <(grep -hoE '^TEST(_F|_P)?\(\w+' "$root"/tests/*/linux/*_test.cpp | sed 's/.*(//' | sort -u)
tests=(--gtest_filter="-$left_out")
[ $# -eq 0 ] || tests=("$@")

cd "$scratch/one"
mkdir -m 1777 tmp
status=0
for program in platform cleaning analysis uninstall attack bridge; do
    [ -x "$build/tests/test_$program" ] || continue
    TMPDIR=$scratch/one/tmp VELTO_OTHER_VOLUME=$scratch/other \
        "$build/tests/test_$program" --gtest_brief=1 "${tests[@]}" || status=1
done
exit $status
