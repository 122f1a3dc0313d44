# Every test: unit tests with address, undefined-behaviour and thread sanitizers, the page's own
# tests, and the real program. Sourced by ./dev.

# run_tests [--all]: what is left out where nothing that a test depends on has changed (tools/selection)
# runs as well with --all, and where CI is set.
run_tests() {
    local all=${CI:+all}
    case ${1:-} in
        '') ;;
        --all) all=all ;;
        *) fail "usage: ./dev test [--all]" ;;
    esac
    setup_build
    need_packages test
    build_page
    if on_mac; then
        compile_all 'asan unit_tests' 'tsan unit_tests' 'release velto'
        attach_second_volume
    else
        compile_all 'asan unit_tests' 'tsan unit_tests' 'release velto test_helpers'
    fi
    combine_tests asan tsan release
    test_what_changed "$root/build/test" "$all"
}

# test_what_changed FOLDER ALL: runs the tests of a CTest folder that have to run, all of them where ALL is
# not empty. The whole log is kept.
test_what_changed() {
    local folder=$1 tools counts run left_out status=0
    tools=$(dirname "${BASH_SOURCE[0]}")
    counts=$(node "$tools/selection/select.mjs" choose "$folder" "$2")
    read -r run left_out <<<"$counts"
    if [ "$left_out" -gt 0 ]; then
        say "$left_out test suites are left out, as nothing that they depend on has changed since they passed (--all runs them)"
    fi
    if [ "$run" -eq 0 ]; then
        return
    fi
    say "Testing"
    # ctest's closing lines come last. Of two tests one waits, for the disk or for a window.
    ctest --test-dir "$folder" --tests-information "$folder/chosen" --output-on-failure \
        --parallel "$((2 * $(cores)))" --no-tests=error 2>&1 |
        tee "$logs/test.log" | awk -v LOG="$folder/Testing/Temporary/LastTest.log" -f "$tools/test_output.awk" || status=$?
    node "$tools/selection/select.mjs" record "$folder" "$logs/test.log"
    return "$status"
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
