#!/usr/bin/env bash
# Inside a tree (debian.sh): two packages from the source archive, one with the next number.
set -euo pipefail
# A trial that is repeated compiles what is new alone.
if ! cmp -s /shared/source.tar.xz /build/source.tar.xz; then
    rm -rf /build
    mkdir /build
    tar -x -C /build -f /shared/source.tar.xz
    cp /shared/source.tar.xz /build/
fi
cd /build/velto-*
root=$PWD
logs=$PWD/build/logs
mkdir -p "$logs"
export root logs
# shellcheck source=/dev/null
. tools/common.sh
# shellcheck source=/dev/null
. tools/package.sh
for number in 1 2; do
    VELTO_PACKAGE_NUMBER=$number package_linux build/package
    mkdir -p "/shared/packages/$number"
    rm -f "/shared/packages/$number"/*
    cp build/package/packages/* "/shared/packages/$number/"
    cp "$logs/package.log" "/shared/package-$number.log"
    grep -c 'warning:' "$logs/package.log" | sed 's/$/ warnings of the compiler/' || true
done
