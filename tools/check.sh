# Formatting, static analysis and type checks. Sourced by ./dev.

native_sources() {
    find analysis app bench bridge cleaning maintenance monitor platform settings tests uninstall \
        -path tests/macos_typecheck -prune -o -path '*/node_modules' -prune -o \
        -type f \( "$@" \) -print 2>/dev/null | LC_ALL=C sort
}

formatted_sources() { native_sources -name '*.cpp' -o -name '*.h' -o -name '*.mm'; }

# run_checks [--fix]: with --fix, formats the sources first.
run_checks() {
    case ${1:-} in
        '' | --fix) ;;
        *) fail "usage: ./dev check [--fix]" ;;
    esac
    setup_build
    need_packages check
    local -a failed=()

    say "Formatting (clang-format)"
    if [ "${1:-}" = --fix ]; then
        formatted_sources | xargs clang-format -i
    fi
    formatted_sources | xargs clang-format --dry-run -Werror 2>"$logs/format.log" || {
        grep -h 'error:' "$logs/format.log" | cut -d: -f1 | sort | uniq -c
        echo "    not as clang-format has it (mistakes per file); ./dev check --fix formats them"
        failed+=(formatting)
    }

    say "Shell scripts (shellcheck)"
    # SC2154: what ./dev sets before it reads its parts.
    grep -lE '^#!.*bash' dev .ci/run bench/* tests/*.sh tests/*/*.sh packaging/*/*.sh .github/scripts/*.sh 2>/dev/null |
        xargs shellcheck --shell=bash --exclude=SC2154 tools/*.sh || failed+=(shellcheck)

    say "The page's types (svelte-check)"
    npm run --silent --prefix resources check || failed+=(svelte-check)

    say "Links in the documents"
    node tests/document_links.mjs || failed+=(links)

    say "Type-check of the macOS sources"
    if on_mac; then
        echo "    skipped: here the compiler itself sees them"
    else
        tests/macos_typecheck.sh || failed+=(macos-typecheck)
    fi

    if ! on_mac; then
        say "What a Mac compiles too, with LLVM's C++ library"
        tests/portable_check.sh || failed+=(portable-check)

        say "CMake's configuration for a Mac"
        tests/mac_configure.sh || failed+=(mac-configuration)

        say "The packages (lintian, desktop entry, metainfo, manual pages, the same bytes twice)"
        check_packages || failed+=(packages)

        say "Tests on volumes that take names as a Mac's do"
        compile debug velto-passing-volume test_platform test_cleaning test_analysis test_uninstall \
            test_attack test_bridge
        tests/like_a_mac.sh build/debug >"$logs/like-a-mac.log" 2>&1 || {
            tail -n 40 "$logs/like-a-mac.log"
            failed+=(like-a-mac)
        }
    fi

    # ./dev test goes through a share of the places at which a change of the trash can fail or die,
    # and tries a share of the random inputs.
    say "Every place at which a change can fail or die, and many more random inputs"
    compile debug test_cleaning test_platform test_uninstall
    VELTO_EXHAUSTIVE=1 ctest --test-dir build/debug \
        -R '^(cleaning\..*Trash|platform\..*(Move|Icons|PropertyList)|uninstall\.)' --output-on-failure \
        --parallel "$(cores)" --no-tests=error >"$logs/exhaustive.log" 2>&1 || {
        tail -n 40 "$logs/exhaustive.log"
        failed+=(exhaustive-tests)
    }

    say "Static analysis (clang-tidy)"
    run_clang_tidy || failed+=(clang-tidy)

    if on_mac; then
        say "Fuzzing: skipped, the fuzzers are built for Linux only"
    else
        build_fuzzers
        say "Fuzzing (half a minute each)"
        fuzz_for 30 || failed+=(fuzz)
    fi

    [ ${#failed[@]} -eq 0 ] || fail "these checks failed: ${failed[*]}"
    say "All checks passed"
}

# clang-tidy reads from the debug build how a file is compiled. Debian's clang knows C++23 by its
# working name.
run_clang_tidy() {
    build_page
    configure debug
    mkdir -p build/tidy
    sed 's/-std=c++23/-std=c++2b/g' build/debug/compile_commands.json \
        >build/tidy/compile_commands.json
    local tidy=clang-tidy
    have "$tidy" || tidy=$(brew --prefix llvm)/bin/clang-tidy
    # What this build does not compile (the other system's sources) has no entry.
    native_sources -name '*.cpp' | while read -r file; do
        grep -qF "\"$root/$file\"" build/tidy/compile_commands.json && echo "$file"
    done | xargs -P "$(cores)" -n 1 "$tidy" -p build/tidy --quiet 2>"$logs/tidy.log"
}
