# Every test: unit tests with address, undefined-behaviour and thread sanitizers, the page's own
# tests, and the real program. Sourced by ./dev.

run_tests() {
    setup_build
    need_packages test
    build_page
    compile asan unit_tests
    compile tsan unit_tests
    if on_mac; then
        compile release velto
        attach_second_volume
    else
        compile release velto test_helpers
    fi
    combine_tests asan tsan release
    say "Testing"
    # ctest's closing lines come last. The whole log is kept.
    ctest --test-dir build/test --output-on-failure --parallel "$(cores)" --no-tests=error 2>&1 |
        tee "$logs/test.log" | awk -v LOG=build/test/Testing/Temporary/LastTest.log -f tools/test_output.awk
}

# A Mac keeps no volume in memory: what the tests move between two volumes goes to a disk image, which
# is let go when the script ends.
attach_second_volume() {
    local image=$root/build/second-volume
    mkdir -p "$image"
    quietly disk-image.log hdiutil create -ov -quiet -size 2g -type SPARSE -fs APFS \
        -volname velto-tests "$image/disk"
    quietly disk-image.log hdiutil attach -nobrowse -noautofsck -mountpoint "$image/mounted" \
        "$image/disk.sparseimage"
    export VELTO_OTHER_VOLUME=$image/mounted
    trap 'hdiutil detach -quiet -force "$VELTO_OTHER_VOLUME"' EXIT
}

# One CTest run over several builds, so that one set of closing lines tells the whole result.
combine_tests() {
    mkdir -p build/test
    local preset
    for preset in "$@"; do
        printf 'subdirs("%s")\n' "$root/build/$preset"
    done >build/test/CTestTestfile.cmake
}
