#!/usr/bin/env bash
# Compiles whatever a Mac compiles too, sources and tests, without making objects: with LLVM's C++
# library, whose headers bring nothing along that was not asked for, and with the integer types of
# a Mac's headers (portable_check/include). What is unchanged since it last passed is left alone.
#
#   portable_check.sh [FILE.cpp...]   only these
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
compiler=${CLANGXX:-clang++-19}
folder=build/portable
mkdir -p "$folder"

portable_sources() {
    find analysis app bench bridge cleaning maintenance monitor platform settings tests uninstall \
        \( -name linux -o -name node_modules -o -path tests/e2e \) -prune -o -name '*.cpp' \
        ! -path bench/bare_window.cpp ! -path bench/make_apps.cpp ! -path bench/make_caches.cpp \
        ! -path tests/fuzz/engine/libfuzzer.cpp -print | LC_ALL=C sort
}

# What these names need no version of the library promises to bring along with anything else.
lacking=$(portable_sources | xargs grep -lE 'std::(back_inserter|front_inserter|inserter|make_move_iterator|[io]stream(buf)?_iterator)\b' |
    xargs grep -L '#include <iterator>' || true)
if [ -n "$lacking" ]; then
    printf 'without #include <iterator>, whose iterators they use:\n%s\n' "$lacking" >&2
    exit 1
fi

flags="-std=c++23 -stdlib=libc++ -I. -Itests -isystem tests/portable_check/include -D_FILE_OFFSET_BITS=64"
flags+=' -D_LIBCPP_REMOVE_TRANSITIVE_INCLUDES -DVELTO_FUZZ_CORPUS=\"\" -DVELTO_RULES=\"\" -DVELTO_RULE_TREES=\"\" -DVELTO_VERSION=\"\" -DVELTO_APP_ID=\"\"'
# The warnings are the build's (cmake/options.cmake).
flags+=' -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -Wno-missing-field-initializers'
# What every test includes anyway, and what takes longest.
framework=$folder/framework.h
[ -e "$framework" ] || echo '#include <gmock/gmock.h>' >"$framework"
{
    cat <<TEXT
builddir = $folder
rule prepare
  command = $compiler $flags -x c++-header -MMD -MF \$out.d -o \$out \$in
  depfile = \$out.d
  deps = gcc
rule check
  command = $compiler $flags -fsyntax-only \$with -MMD -MF \$out.d \$in && touch \$out
  depfile = \$out.d
  deps = gcc
build $framework.pch: prepare $framework
TEXT
    portable_sources | while read -r file; do
        case $file in
            *_test.cpp)
                echo "build $folder/$file.ok: check $file | $framework.pch"
                echo "  with = -include-pch $framework.pch"
                ;;
            *) echo "build $folder/$file.ok: check $file" ;;
        esac
    done
} >"$folder/build.ninja.new"
cmp -s "$folder/build.ninja.new" "$folder/build.ninja" || cp "$folder/build.ninja.new" "$folder/build.ninja"

targets=()
for file in "$@"; do
    targets+=("$folder/$file.ok")
done
exec ninja --quiet -k 0 -f "$folder/build.ninja" ${targets[@]+"${targets[@]}"}
