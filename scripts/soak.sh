#!/usr/bin/env bash
# The long form of the soak and of the deadline measurement, on a release build
# (default build/release): 10,000 verifications in one process, 8 threads x 500
# verifications mixing two catalogues, 1,000 calls of the Python module, and the time
# taken to honour deadlines on a hostile 100-ship file. Prints the figures.
#
#   scripts/soak.sh [build folder]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
cmake --build "$build" -j2 --target test_core kavren-synth bench_limits kavren_python >/dev/null

echo "== 10,000 verifications; 8 threads x 500 verifications"
KAVREN_SOAK_VERIFICATIONS=10000 KAVREN_SOAK_ROUNDS=500 \
  "$build/tests/test_core" --gtest_filter='Soak.*' | grep -E '^soak:|OK|FAILED'

echo "== Python: 1,000 calls"
KAVREN_SOAK_CALLS=1000 PYTHONPATH="$build/python" KAVREN_SYNTH="$PWD/$build/tools/kavren-synth" \
  /usr/bin/python3 -m pytest -q -s -p no:cacheprovider \
  python/tests/test_resources.py -k resident_memory | grep -E '^python:|passed|failed'

echo "== Deadlines on a hostile 100-ship file"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$build/tools/kavren-synth" bench "$folder" --ships 100 >/dev/null
"$build/bench/bench_limits" "$folder" 5
