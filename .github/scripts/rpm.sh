#!/usr/bin/env bash
# The .rpm as the system that it is run on builds it, in build/package/packages.
set -euo pipefail
cd "$(dirname "$0")/../.."
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
./dev setup
npm --prefix resources run build
cmake --preset package -DVELTO_HOMEPAGE="${VELTO_REPOSITORY:+https://github.com/$VELTO_REPOSITORY}"
cmake --build build/package --parallel "$(nproc)" --target velto velto-icons page
cd build/package
cpack -G RPM
