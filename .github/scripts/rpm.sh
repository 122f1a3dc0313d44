#!/usr/bin/env bash
# The .rpm as the system that it is run on builds it, in build/package/packages.
set -euo pipefail
cd "$(dirname "$0")/../.."
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
./dev setup
npm --prefix resources run build
# shellcheck source=/dev/null
. tools/package.sh
cmake --preset package "-DVELTO_HOMEPAGE=$(homepage)" "-DVELTO_SCREENSHOTS=$(screenshots)"
cmake --build build/package --parallel "$(nproc)" --target velto velto-icons page
cd build/package
cpack -G RPM
