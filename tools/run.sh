# Running the program. Sourced by ./dev.

run_program() {
    build_everything release
    if on_mac || [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ] || opens_no_window "$@"; then
        exec build/release/velto "$@"
    fi
    if have apt-get; then
        need_packages display
    fi
    have Xvfb || fail "there is no display, and no Xvfb to make one"
    say "No display: running the program on a virtual one until it shows an analysis"
    node tools/run_virtual.mjs "$root/build/release/velto" "$root/build/window.png" \
        "$logs/run.log" "$@"
}

opens_no_window() {
    local argument
    for argument in "$@"; do
        case $argument in --maintenance | --reset) return 0 ;; esac
    done
    return 1
}
