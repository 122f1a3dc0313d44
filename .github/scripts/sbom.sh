#!/usr/bin/env bash
# The bill of materials on standard output, with the Node that ./dev brings where the system's is too old.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
cd "$root"
logs=$root/build/logs
mkdir -p "$logs"
# shellcheck source=/dev/null
. tools/common.sh
# shellcheck source=/dev/null
. tools/packages.sh
need_node >&2
node tools/release/sbom.mjs
