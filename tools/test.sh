# Every test: unit tests with address, undefined-behaviour and thread sanitizers, the page's own
# tests, and the real program. Sourced by ./dev.

run_tests() {
    setup_build
    need_packages test
    build_page
    compile asan unit_tests
    compile tsan unit_tests
    compile release velto notification_service load drag_source clipboard_text
    combine_tests asan tsan release
    say "Testing"
    # ctest's closing lines come last. The whole log is kept.
    ctest --test-dir build/test --output-on-failure --parallel "$(cores)" --no-tests=error 2>&1 |
        tee "$logs/test.log" | awk -v LOG=build/test/Testing/Temporary/LastTest.log -f tools/test_output.awk
}

# One CTest run over several builds, so that one set of closing lines tells the whole result.
combine_tests() {
    mkdir -p build/test
    local preset
    for preset in "$@"; do
        printf 'subdirs("%s")\n' "$root/build/$preset"
    done >build/test/CTestTestfile.cmake
}
