# Configuring and building the program. Sourced by ./dev.

# configure PRESET: Ninja configures again by itself when a CMake file changes, but not when the
# presets do.
configure() {
    local folder=build/$1
    if [ -f "$folder/build.ninja" ] && [ "$folder/CMakeCache.txt" -nt CMakePresets.json ]; then
        return
    fi
    say "Configuring $1"
    quietly "configure-$1.log" cmake --preset "$1"
    touch "$folder/CMakeCache.txt"
}

# steps_of PRESET [TARGET...]: how many sources and programs have to be made. Looking for new sources
# and copying the page are done at every build and not worth a word.
steps_of() {
    ninja -n -C "build/$1" "${@:2}" 2>/dev/null | grep -c '^\[.*\] \(Building\|Linking\|Re-running\)' || true
}

# compile PRESET [TARGET...]: builds the targets, or everything.
compile() {
    local preset=$1
    shift
    configure "$preset"
    local log=$logs/build-$preset.log
    local -a command=(cmake --build "build/$preset" --parallel "$(cores)")
    [ $# -gt 0 ] && command+=(--target "$@")

    [ "$(steps_of "$preset" "$@")" -gt 0 ] && say "Building $preset"
    if ! "${command[@]}" >"$log" 2>&1; then
        # What the compiler said, without the progress and the command lines.
        sed -n '/^FAILED: /,$p' "$log" | grep -v -e '^: && ' -e '^/usr/.*c++ ' -e '^\[[0-9]*/[0-9]*\] ' >&2 || true
        fail "the $preset build failed (log: ${log#"$root"/})"
    fi
}

# compile_all "PRESET TARGET..."...: one after another; side by side where there is little to do, as
# then each mostly waits for its one source and leaves the other processors idle.
compile_all() {
    local build steps=0 failed=
    local -a words running=()
    for build in "$@"; do
        read -ra words <<<"$build"
        configure "${words[0]}"
        steps=$((steps + $(steps_of "${words[@]}")))
    done
    for build in "$@"; do
        read -ra words <<<"$build"
        compile "${words[@]}" &
        running+=($!)
        [ "$steps" -le 60 ] || wait $! || exit 1
    done
    for build in "${running[@]}"; do
        wait "$build" || failed=yes
    done
    [ -z "$failed" ] || exit 1
}

build_everything() {
    case $1 in
        release | debug | asan | tsan) ;;
        *) fail "no such preset: $1 (there are release, debug, asan and tsan)" ;;
    esac
    setup_build
    build_page
    compile "$1"
}
