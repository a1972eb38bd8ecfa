#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer + UndefinedBehaviorSanitizer) and
# runs each for a bounded time. Usage: scripts/fuzz.sh [seconds per target, default 60]
# Any crash, leak, sanitizer report or timeout makes the script fail.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
if ! command -v clang++ >/dev/null 2>&1 || ! ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1; then
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends clang libclang-rt-dev
fi
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc 2>/dev/null || echo 2)"

work=build/fuzz/run
mkdir -p "$work/seeds" "$work/corpus"
synth=build/fuzz/tools/kavren-synth
catalogue="$work/seeds/catalogue.txt"
if [ -x "$synth" ]; then
  "$synth" demo "$work/seeds/demo" >/dev/null
  "$synth" suite "$work/seeds/suite" >/dev/null 2>&1 || true
  cp "$work/seeds/demo/KAVREN_Asteroids_Data.txt" "$catalogue"
else
  demo/make-catalogue.sh > "$catalogue"
fi

seed_solutions() {
  local dest=$1
  mkdir -p "$dest"
  cp demo/Result.txt "$dest/hand-made" 2>/dev/null || true
  local n=0
  while IFS= read -r -d '' file; do
    n=$((n + 1))
    # Large solutions are cut to their first lines: libFuzzer works best on small inputs.
    head -c 60000 "$file" > "$dest/synth-$n"
  done < <(find "$work/seeds" -name Result.txt -print0 2>/dev/null)
}

run_target() {
  local target=$1 corpus=$2
  shift 2
  echo "== fuzz_$target for ${seconds}s"
  (cd "$work" && KAVREN_THREADS=1 KAVREN_FUZZ_CATALOGUE="$PWD/seeds/catalogue.txt" \
    ASAN_OPTIONS=detect_leaks=1 \
    "../fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=30 -rss_limit_mb=4096 \
    -print_final_stats=1 "$@" "$corpus")
}

mkdir -p "$work/corpus/catalogue"
head -c 20000 "$catalogue" > "$work/corpus/catalogue/head"
run_target catalogue "corpus/catalogue" -max_len=65536
seed_solutions "$work/corpus/solution"
run_target solution "corpus/solution" -max_len=65536 -dict="$PWD/fuzz/solution.dict"
seed_solutions "$work/corpus/whole_check"
run_target whole_check "corpus/whole_check" -max_len=65536 -dict="$PWD/fuzz/solution.dict"
