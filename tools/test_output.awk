# Shortens ctest's output: suites of unit tests that pass are counted, everything else is shown. What
# tests skip stands in CTest's own log (LOG) alone; it is told, with its reason, before the closing
# lines.
/^ *Start +[0-9]+: / { next }
/^Internal ctest changing into directory/ { next }
/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: .* Passed / {
    passed++
    # The suites that take long tell of themselves.
    if ($0 ~ /: (page|e2e|macos)[._]/) { print; fflush() }
    else if (passed % 100 == 0) { print "  ... " passed " suites passed"; fflush() }
    next
}
/^[0-9]+% tests passed/ { isClosing = 1 }
isClosing { closing = closing $0 "\n"; next }
{ print; fflush() }

END {
    while ((getline line < LOG) > 0) {
        if (line ~ /^[0-9]+\/[0-9]+ Testing: /) { suite = line; sub(/^.*Testing: /, "", suite) }
        # The reason stands in the line after the one that says where.
        if (line ~ /: Skipped$/) { getline reason < LOG }
        if (line ~ /^\[  SKIPPED \] .* \([0-9]+ ms\)$/) {
            split(line, words, " ")
            test = words[4]
            sub(/^[^.]*/, "", test)
            print "  skipped: " suite test ": " reason
        }
    }
    printf "%s", closing
}
