#!/usr/bin/env bash
# Type-checks every macOS source of the project with clang, on a machine without Apple's SDK, with
# the warnings of a build (cmake/options.cmake). Fails when any source has an error or a warning.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
mapfile -t files < <(find . -regextype posix-extended \
    -regex '\./(build|resources|tests/macos_typecheck|\.[^/]+)' -prune -o -name '*.mm' -print | sort)
if [ ${#files[@]} -eq 0 ]; then
    echo "no macOS source found" >&2
    exit 1
fi
status=0
tests/macos_typecheck/check.sh "${files[@]}" -- -I. -Itests \
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -Wno-missing-field-initializers || status=1
# The declarations themselves: what uses them, and the values and sizes that they must have.
tests/macos_typecheck/check.sh tests/macos_typecheck/*.mm -- -Werror || status=1
exit $status
