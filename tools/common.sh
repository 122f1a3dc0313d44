# What every part of ./dev uses. Sourced; `root` and `logs` are set.

say() { printf '==> %s\n' "$*"; }

fail() {
    printf 'dev: %s\n' "$*" >&2
    exit 1
}

have() { command -v "$1" >/dev/null 2>&1; }

on_mac() { [ "$(uname -s)" = Darwin ]; }

cores() { getconf _NPROCESSORS_ONLN 2>/dev/null || echo 2; }

# quietly LOG COMMAND...: keeps the output for the log and shows it only when the command fails.
quietly() {
    local log=$logs/$1
    shift
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        fail "failed: $* (log: ${log#"$root"/})"
    fi
}

# fingerprint PATH...: one line that changes when a file below is added, removed or changed.
fingerprint() {
    find "$@" -type f -print0 | LC_ALL=C sort -z | xargs -0 cksum | cksum
}
