#!/usr/bin/env bash
# Builds and runs every test, in the release build and in the sanitizer build.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
for preset in release sanitize; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  ctest --preset "$preset" -j "$jobs"
done
