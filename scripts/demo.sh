#!/usr/bin/env bash
# Builds the verifier, prepares the demo scenario in demo-run/ and checks it there.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc 2>/dev/null || echo 2)"
rm -rf demo-run
mkdir -p demo-run
if [ -x build/release/tools/kavren-synth ]; then
  build/release/tools/kavren-synth demo demo-run
else
  demo/make-catalogue.sh > demo-run/KAVREN_Asteroids_Data.txt
  cp demo/Result.txt demo-run/
fi
cd demo-run
../build/release/kavren-check
