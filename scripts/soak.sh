#!/usr/bin/env bash
# The measurements of many verifications and of the deadline, on a release build (default
# build/release): resident memory and file descriptors over 10,000 verifications in one
# process (bench_soak), 8 threads x 500 verifications mixing two catalogues (the long form
# of test_core's Soak.*), resident memory over 1,000 calls of the Python module
# (bench/soak.py), the time taken to honour deadlines on a hostile 100-ship file
# (bench_limits) and the time per line of million-line files (bench_growth). Prints the
# figures.
#
#   scripts/soak.sh [build folder]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
cmake --build "$build" -j2 --target test_core kavren-synth bench_soak bench_limits \
  bench_growth kavren_python >/dev/null
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$build/tools/kavren-synth" demo "$folder/demo" >/dev/null
"$build/tools/kavren-synth" bench "$folder/bench" --ships 100 >/dev/null

echo "== 10,000 verifications; 8 threads x 500 verifications"
"$build/bench/bench_soak" "$folder/demo" 10000
KAVREN_SOAK_VERIFICATIONS=10000 KAVREN_SOAK_ROUNDS=500 \
  "$build/tests/test_core" --gtest_filter='Soak.*' | grep -E '^\[  (PASSED|FAILED)'

echo "== Python: 1,000 calls"
PYTHONPATH="$build/python" /usr/bin/python3 bench/soak.py "$folder/demo" 1000

echo "== Deadlines on a hostile 100-ship file"
"$build/bench/bench_limits" "$folder/bench" 5

echo "== A million lines of one kind"
"$build/bench/bench_growth" "$folder/demo" 3
