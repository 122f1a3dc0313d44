#!/usr/bin/env bash
# Type-checks every macOS source of the project with clang, on a machine without Apple's SDK.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
mapfile -t files < <(find app platform -path '*/macos/*.mm' | sort)
if [ ${#files[@]} -eq 0 ]; then
    echo "no macOS source found" >&2
    exit 1
fi
exec tests/macos_typecheck/check.sh "${files[@]}" -- -I. -Werror
