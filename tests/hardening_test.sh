#!/usr/bin/env bash
# Checks in the built program what the compiler and the linker were asked for (cmake/options.cmake):
#   tests/hardening_test.sh PROGRAM OBJECT COMMANDS
# OBJECT is one of the object files that the program is made of, COMMANDS the record of how they were
# compiled.
set -eu
program=$1
object=$2
commands=$3
failed=0

# expect WHAT PATTERN: fails unless a line of the standard input matches. It is read to its end, so
# that the one who writes it never meets a closed pipe.
expect() {
    if [ "$(grep -cE -- "$2")" -eq 0 ]; then
        echo "missing: $1" >&2
        failed=1
    fi
}

readelf -hW "$program" | expect "a position-independent executable" 'Type: +DYN'
readelf -dW "$program" | expect "immediate binding" 'FLAGS.* (BIND_)?NOW'
readelf -lW "$program" | expect "a relocation table that becomes read-only" 'GNU_RELRO'
readelf -lW "$program" | expect "a stack that is not executable" 'GNU_STACK +(0x[0-9a-f]+ +){5}RW +'
symbols=$(nm -D "$program")
expect "stack protectors" 'U __stack_chk_fail' <<<"$symbols"
expect "checked functions of the C library" 'U __[a-z]+_chk' <<<"$symbols"
expect "the assertions of the C++ library" 'U _ZSt21__glibcxx_assert_fail' <<<"$symbols"
# These leave no mark that a reader of the program could find.
expect "stack probes" '-fstack-clash-protection' <"$commands"
expect "checked functions at level 3" '-D_FORTIFY_SOURCE=3' <"$commands"
case $(uname -m) in
    x86_64) readelf -nW "$object" | expect "protected jumps and returns" 'IBT, SHSTK' ;;
esac

exported=$(nm -D --defined-only "$program" | grep -cE ' [TWV] ' || true)
if [ "$exported" -ge 400 ]; then
    echo "$exported functions are exported; fewer than 400 were expected" >&2
    failed=1
fi
echo "$exported exported functions"
exit $failed
