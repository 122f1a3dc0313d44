#!/usr/bin/env bash
# Every option that the program tells of is in the manual pages and in the completions, and no other:
#   tests/packages/options_test.sh PROGRAM
set -eu
linux=$(cd "$(dirname "$0")/../../packaging/linux" && pwd)
told=$("$1" --help | grep -oE '^  --[a-z-]+' | tr -d ' ' | sort)
[ -n "$told" ] || exit 1
failed=0

# names FILE PATTERN REPLACEMENT: fails unless the file's options, as the pattern finds them, are those.
names() {
    local found
    found=$(grep -oE -e "$2" "$1" | sed -E "$3" | sort -u)
    [ "$found" = "$told" ] && return
    echo "$1:" >&2
    diff <(echo "$told") <(echo "$found") >&2 || true
    failed=1
}

for page in "$linux"/man/*.in; do
    names "$page" '^\.B \\-\\-[a-z\-]+$' 's/^\.B //; s/\\//g'
done
names "$linux/completions/velto.bash" '--[a-z-]+[a-z]' 's/$//'
names "$linux/completions/_velto" '--[a-z-]+\[' 's/\[//'
names "$linux/completions/velto.fish" ' -l [a-z-]+' 's/ -l /--/'
bash -n "$linux/completions/velto.bash"
exit $failed
