# Formatting, static analysis and type checks. Sourced by ./dev.

native_sources() {
    find analysis app bench bridge cleaning maintenance monitor platform settings tests uninstall \
        -path tests/macos_typecheck -prune -o -path '*/node_modules' -prune -o \
        -type f \( "$@" \) -print 2>/dev/null | LC_ALL=C sort
}

run_checks() {
    setup_build
    need_packages check
    local failed=()

    say "Formatting (clang-format)"
    native_sources -name '*.cpp' -o -name '*.h' -o -name '*.mm' |
        xargs clang-format --dry-run -Werror || failed+=(formatting)

    say "Shell scripts (shellcheck)"
    # SC2154: what ./dev sets before it reads its parts.
    grep -lE '^#!.*bash' dev .ci/run bench/* tests/*.sh tests/*/*.sh 2>/dev/null |
        xargs shellcheck --shell=bash --exclude=SC2154 tools/*.sh || failed+=(shellcheck)

    say "The page's types (svelte-check)"
    npm --silent --prefix resources run check || failed+=(svelte-check)

    say "Type-check of the macOS sources"
    if on_mac; then
        echo "    skipped: here the compiler itself sees them"
    else
        tests/macos_typecheck.sh || failed+=(macos-typecheck)
    fi

    say "Static analysis (clang-tidy)"
    run_clang_tidy || failed+=(clang-tidy)

    [ ${#failed[@]} -eq 0 ] || fail "these checks failed: ${failed[*]}"
    say "All checks passed"
}

# clang-tidy reads how a file is compiled from the debug build's compile_commands.json.
run_clang_tidy() {
    [ -f resources/dist/index.html ] || build_page
    configure debug
    local tidy=clang-tidy
    have "$tidy" || tidy=$(brew --prefix llvm)/bin/clang-tidy
    native_sources -name '*.cpp' |
        xargs -P "$(cores)" -n 4 "$tidy" -p build/debug --quiet 2>"$logs/tidy-stderr.log"
}
