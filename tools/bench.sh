# Measurements. Sourced by ./dev.

run_benchmarks() {
    setup_build
    need_packages bench
    build_page
    compile release
    say "Measuring the walk and the duplicates"
    bench/run "$@"
    case " $* " in
        *" --only "* | *" --clean "* | *" --help "*) return ;;
    esac
    if on_mac; then
        say "Skipped on a Mac: the start of the program and the live view (they need a virtual X display), and the page (Chromium)"
        return
    fi
    say "Measuring long lists of the page"
    node bench/page.mjs resources/dist
    say "Measuring the start of the program"
    node bench/start.mjs build/release
    say "Measuring the live system view"
    node bench/live.mjs build/release
    say "Measuring how soon the window answers beside busy processors"
    node bench/load.mjs build/release
}
