#!/usr/bin/env bash
# The unit tests as the compiler and the libraries of this system build them, without sanitizers: for
# systems that do not have what the whole of ./dev test needs.
set -euo pipefail
cd "$(dirname "$0")/../.."
./dev setup
./dev build debug
# Of the rest, the page's browser is Debian's, and macOS is checked elsewhere.
ctest --test-dir build/debug --output-on-failure --parallel "$(nproc)" --no-tests=error \
    --label-exclude 'page|e2e|macos'
