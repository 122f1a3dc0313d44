#!/usr/bin/env bash
# Configures the project as on a Mac, without building anything: what CMake does there alone.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
folder=build/mac-dry
log=build/logs/mac-dry.log
mkdir -p build/logs

fail() {
    echo "mac_configure: $*" >&2
    exit 1
}

for type in Release Debug; do
    cmake -S . -B "$folder/$type" -G Ninja --fresh -DCMAKE_BUILD_TYPE=$type -DVELTO_BENCH=ON \
        -DCMAKE_TOOLCHAIN_FILE="$root/tests/mac_configure/toolchain.cmake" >"$log" 2>&1 || {
        cat "$log" >&2
        fail "CMake cannot configure for a Mac ($type)"
    }
    # Every source for a Mac is compiled, and none for another system.
    find app bench bridge platform tests -path tests/macos_typecheck -prune -o -name '*.mm' -print |
        while read -r source; do
            grep -qF "/$source" "$folder/$type/compile_commands.json" || fail "$source is not compiled"
        done
    ! grep -q '"file":.*/linux/' "$folder/$type/compile_commands.json" ||
        fail "a source for Linux is compiled"
done
