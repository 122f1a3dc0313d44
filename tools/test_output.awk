# Shortens ctest's output: unit tests that pass are counted, everything else is shown.
/^ *Start +[0-9]+: / { next }
/^Internal ctest changing into directory/ { next }
/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: .* Passed / {
    passed++
    # The suites that take long tell of themselves.
    if ($0 ~ /: (page|e2e|macos)[._]/) { print; fflush() }
    else if (passed % 200 == 0) { print "  ... " passed " passed"; fflush() }
    next
}
{ print; fflush() }
