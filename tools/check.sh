# Formatting, static analysis and type checks. Sourced by ./dev.

# The checks in their order, the quick ones first.
checks=(format shell page links mac portable mac-configuration packages mac-names exhaustive tidy analyzer fuzz)

native_sources() {
    find analysis app bench bridge cleaning maintenance monitor platform settings tests uninstall \
        -path tests/macos_typecheck -prune -o -path '*/node_modules' -prune -o \
        -type f \( "$@" \) -print 2>/dev/null | LC_ALL=C sort
}

formatted_sources() { native_sources -name '*.cpp' -o -name '*.h' -o -name '*.mm'; }

# run_checks [--fix] [CHECK...]: with --fix, formats the sources first; with names, these checks alone.
run_checks() {
    local check fix='' failed=()
    local -a wanted=()
    for check in "$@"; do
        if [ "$check" = --fix ]; then
            fix=--fix
        elif [[ " ${checks[*]} " == *" $check "* ]]; then
            wanted+=("$check")
        else
            fail "usage: ./dev check [--fix] [CHECK...], of: ${checks[*]}"
        fi
    done
    setup_build
    need_packages check
    if [ -n "$fix" ]; then
        formatted_sources | xargs clang-format -i
    fi
    [ ${#wanted[@]} -gt 0 ] || wanted=("${checks[@]}")
    for check in "${wanted[@]}"; do
        "check_${check//-/_}" || failed+=("$check")
    done
    [ ${#failed[@]} -eq 0 ] || fail "these checks failed: ${failed[*]}"
    say "All checks passed"
}

check_format() {
    say "Formatting (clang-format)"
    formatted_sources | xargs clang-format --dry-run -Werror 2>"$logs/format.log" && return
    grep -h 'error:' "$logs/format.log" | cut -d: -f1 | sort | uniq -c
    echo "    not as clang-format has it (mistakes per file); ./dev check --fix format"
    return 1
}

check_shell() {
    say "Shell scripts (shellcheck)"
    # SC2154: what ./dev sets before it reads its parts.
    # Of all files that may be one; grep counts a folder among them as a failure.
    { grep -slE '^#!.*bash' dev .ci/run bench/* tests/*.sh tests/*/*.sh packaging/*/*.sh .github/scripts/*.sh || true; } |
        xargs shellcheck --shell=bash --exclude=SC2154 tools/*.sh
}

check_page() {
    say "The page's types (svelte-check)"
    npm run --silent --prefix resources check
}

check_links() {
    say "Links in the documents"
    node tests/document_links.mjs
}

check_mac() {
    say "Type-check of the macOS sources"
    if on_mac; then
        echo "    skipped: here the compiler itself sees them"
    else
        tests/macos_typecheck.sh
    fi
}

check_portable() {
    on_mac && return
    say "What a Mac compiles too, with LLVM's C++ library"
    tests/portable_check.sh
}

check_mac_configuration() {
    on_mac && return
    say "CMake's configuration for a Mac"
    tests/mac_configure.sh
}

check_mac_names() {
    on_mac && return
    say "Tests on volumes that take names as a Mac's do"
    compile debug velto-passing-volume test_platform test_cleaning test_analysis test_uninstall \
        test_attack test_bridge
    tests/like_a_mac.sh build/debug >"$logs/like-a-mac.log" 2>&1 && return
    tail -n 40 "$logs/like-a-mac.log"
    return 1
}

# ./dev test goes through a share of the places at which a change of the trash can fail or die, and tries a
# share of the random inputs.
check_exhaustive() {
    say "Every place at which a change can fail or die, and many more random inputs"
    compile debug test_cleaning test_platform test_uninstall
    VELTO_EXHAUSTIVE=1 ctest --test-dir build/debug \
        -R '^(cleaning\..*Trash|platform\..*(Move|Icons|PropertyList)|uninstall\.)' --output-on-failure \
        --parallel "$(cores)" --no-tests=error >"$logs/exhaustive.log" 2>&1 && return
    tail -n 40 "$logs/exhaustive.log"
    return 1
}

# clang-tidy reads how a source is compiled from what CMake says. What is unchanged, with all that it includes,
# since it last passed is left alone.
check_tidy() {
    say "Static analysis (clang-tidy)"
    build_page
    # Sources that are compiled together share their headers, which take most of the time.
    quietly configure-tidy.log cmake --preset debug -B build/tidy/together -DCMAKE_UNITY_BUILD=ON
    look_with_tidy build/tidy/together build/tidy/checks ''
}

# Paths through the program, which is slow; what tests do, the sanitizers see while they run.
# NewDeleteLeaks: nothing here calls new, and to it a std::shared_ptr in an aggregate that is returned is a leak.
check_analyzer() {
    say "Static analysis (clang's analyzer)"
    build_page
    configure debug
    look_with_tidy build/debug build/tidy/paths \
        " --checks=-*,clang-analyzer-*,-clang-analyzer-optin.performance.Padding,-clang-analyzer-cplusplus.NewDeleteLeaks" \
        analysis app bridge cleaning maintenance monitor platform settings uninstall
}

# look_with_tidy BUILD FOLDER ARGUMENTS [SOURCES...]
look_with_tidy() {
    local tidy=clang-tidy
    have "$tidy" || tidy=$(brew --prefix llvm)/bin/clang-tidy
    mkdir -p "$2"
    node tools/tidy.mjs "$1" "$2" "$tidy$3" "${@:4}" || return 1
    # Ninja tells what failed, and with it what was found.
    ninja --quiet -k 0 -C "$2" 2>&1 | tee "$logs/tidy.log" |
        { grep -v -e '^(cd ' -e 'warnings generated' -e 'treated as error' || true; }
}

check_fuzz() {
    if on_mac; then
        say "Fuzzing: skipped, the fuzzers are built for Linux only"
    else
        build_fuzzers
        say "Fuzzing (half a minute each)"
        fuzz_for 30
    fi
}
