#!/usr/bin/env bash
# Checks the style, then builds and runs every test, in the release build and in the
# sanitizer build, runs the tests that verify from many threads at once under
# ThreadSanitizer, then runs each fuzz target for a bounded time under AddressSanitizer
# and UndefinedBehaviorSanitizer (KAVREN_FUZZ_SECONDS per target, default 5; 0 skips the
# fuzzing).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
# The style stays as written: clang-format's, and no line past 100 columns.
./scripts/check-format.sh
jobs=$(nproc 2>/dev/null || echo 2)
start=$(date +%s)
stage() { echo "== $1 ($(( $(date +%s) - start )) s)"; }
for preset in release sanitize; do
  stage "$preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done
stage tsan
cmake --preset tsan >/dev/null
cmake --build --preset tsan -j "$jobs"
ctest --preset tsan -j "$jobs"
fuzz_seconds=${KAVREN_FUZZ_SECONDS:-5}
if [ "$fuzz_seconds" -gt 0 ]; then
  # A crash, a sanitizer report or a timeout in any target fails the run.
  stage fuzz
  ./scripts/fuzz.sh "$fuzz_seconds"
fi
stage done
