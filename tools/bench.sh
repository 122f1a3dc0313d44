# Measurements. Sourced by ./dev.

run_benchmarks() {
    setup_build
    need_packages bench
    build_page
    compile release
    say "Measuring the walk and the duplicates"
    bench/run "$@"
    if on_mac; then
        say "Skipped on a Mac: the start of the program (it needs a virtual X display)"
        return
    fi
    say "Measuring the start of the program"
    node bench/start.mjs build/release
}
