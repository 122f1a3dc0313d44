# Fuzzing of everything that others write. Sourced by ./dev. See docs/development.md.

fuzz_kept=tests/fuzz/corpus     # in the repository; ./dev test replays it
fuzz_grown=build/fuzz/corpus    # what the fuzzers have added on this machine
fuzz_findings=build/fuzz/findings
fuzz_leaks=suppressions=$root/tests/lsan_suppressions.txt:print_suppressions=0

# run_fuzz MINUTES [TARGET...], or run_fuzz keep [TARGET...]
run_fuzz() {
    local minutes=${1:-}
    [ $# -gt 0 ] && shift
    case $minutes in
        keep) ;;
        '' | 0 | *[!0-9]*) fail "usage: ./dev fuzz MINUTES [TARGET...], or ./dev fuzz keep [TARGET...]" ;;
    esac
    if on_mac; then
        fail "the fuzzers are built for Linux only"
    fi
    build_fuzzers "$@"
    if [ "$minutes" = keep ]; then
        keep_inputs "$@"
        return
    fi
    say "Fuzzing for $minutes minutes each"
    fuzz_for $((minutes * 60)) "$@" || fail "the inputs above make a target fail"
    echo "    ./dev fuzz keep adds what reaches something new to $fuzz_kept"
}

fuzz_target_names() {
    find tests/fuzz tests/fuzz/linux -maxdepth 1 -name '*.cpp' ! -name replay.cpp -printf '%f\n' |
        sed 's/\.cpp$//' | LC_ALL=C sort
}

# build_fuzzers [TARGET...]: all of them without one.
build_fuzzers() {
    setup_build
    need_packages fuzz
    local -a programs=()
    local target
    for target in "$@"; do
        fuzz_target_names | grep -qx -e "$target" ||
            fail "no such target: $target (there are $(fuzz_target_names | tr '\n' ' '))"
        programs+=("fuzz_$target")
    done
    [ $# -eq 0 ] && programs=(fuzz_targets)
    compile fuzz "${programs[@]}"
}

# fuzz_for SECONDS [TARGET...]: as many at a time as there are cores. Fails when one has a finding.
fuzz_for() {
    local seconds=$1
    shift
    local -a all
    [ $# -eq 0 ] && mapfile -t all < <(fuzz_target_names) && set -- "${all[@]}"
    mkdir -p "$fuzz_findings"
    local target failed=0 running=0
    for target in "$@"; do
        if [ "$running" -ge "$(cores)" ]; then
            wait -n || failed=1
            running=$((running - 1))
        fi
        fuzz_one "$target" "$seconds" &
        running=$((running + 1))
    done
    while [ "$running" -gt 0 ]; do
        wait -n || failed=1
        running=$((running - 1))
    done
    return "$failed"
}

# What a single input may be and take. Pictures and whole bundles go through decoders of the system,
# and a picture that claims to be large is decoded only up to a limit: more memory, larger inputs.
fuzz_limits() {
    case $1 in
        icon) echo "-max_len=65536 -rss_limit_mb=2048 -malloc_limit_mb=1024 -timeout=10" ;;
        bundle) echo "-max_len=16384 -rss_limit_mb=2048 -malloc_limit_mb=1024 -timeout=10" ;;
        page | trash | cloud | kernel) echo "-max_len=4096 -rss_limit_mb=1024 -timeout=10" ;;
        *) echo "-max_len=8192 -rss_limit_mb=1024 -timeout=5" ;;
    esac
}

fuzz_one() {
    local target=$1 seconds=$2
    local program=build/fuzz/tests/fuzz/fuzz_$target log=$logs/fuzz-$target.log
    mkdir -p "$fuzz_grown/$target"
    local -a limits
    read -ra limits <<<"$(fuzz_limits "$target")"
    local started=0
    LSAN_OPTIONS=$fuzz_leaks \
        "$program" -max_total_time="$seconds" "${limits[@]}" -print_final_stats=1 \
        -dict="tests/fuzz/$target.dict" -artifact_prefix="$fuzz_findings/$target-" \
        "$fuzz_grown/$target" "$fuzz_kept/$target" >"$log" 2>&1 || started=$?
    if [ "$started" -eq 0 ]; then
        awk -v NAME="$target" '
            / cov: / { for (i = 1; i < NF; i++) if ($i == "cov:") coverage = $(i + 1) }
            /number_of_executed_units/ { runs = $2 }
            END { printf "    %-20s %9d runs, %5d edges\n", NAME, runs, coverage }' "$log"
        return
    fi
    local input
    input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    {
        echo "    $target: a finding"
        grep -m 3 -e 'does not hold' -e 'ERROR: ' -e 'runtime error' "$log" | sed 's/^/        /'
        echo "        again: LSAN_OPTIONS=$fuzz_leaks $program ${limits[*]} ${input:-(no input; see ${log#"$root"/})}"
    } || true
    return 1
}

# keep_inputs [TARGET...]: adds to the repository, of what was grown, the inputs that reach something
# that no kept one does.
keep_inputs() {
    local target
    local -a all limits
    [ $# -eq 0 ] && mapfile -t all < <(fuzz_target_names) && set -- "${all[@]}"
    for target in "$@"; do
        [ -d "$fuzz_grown/$target" ] || continue
        read -ra limits <<<"$(fuzz_limits "$target")"
        quietly "keep-$target.log" env LSAN_OPTIONS="$fuzz_leaks" \
            "build/fuzz/tests/fuzz/fuzz_$target" -merge=1 "${limits[@]}" \
            "$fuzz_kept/$target" "$fuzz_grown/$target"
        echo "    $target: $(find "$fuzz_kept/$target" -type f | wc -l) kept"
    done
}
