#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer + UndefinedBehaviorSanitizer) and
# runs each for a bounded time. Usage: scripts/fuzz.sh [seconds per target, default 60]
# Any crash, leak, sanitizer report or timeout makes the script fail; the input that
# caused it is left in build/fuzz/run/artifacts/. The corpus grows across runs in
# build/fuzz/run/corpus/<target>.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
seconds=${1:-60}
runtime=/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a
# shellcheck disable=SC2086  # the runtime's path is a pattern
if ! command -v clang++ >/dev/null 2>&1 || ! ls $runtime >/dev/null 2>&1; then
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends \
    clang libclang-rt-dev
fi
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc 2>/dev/null || echo 2)" \
  --target fuzz_catalogue fuzz_solution fuzz_whole_check fuzz_session

# Every path below is absolute: the targets change into a scratch directory of their own.
work=$root/build/fuzz/run
seeds=$work/seeds
rm -rf "$seeds" "$work/tmp" "$work/synth"
mkdir -p "$seeds/catalogue" "$seeds/solution" "$work/corpus" "$work/artifacts" "$work/tmp" \
  "$work/synth"
# The seeds' synthesiser: the release build's when there is one, else one built here.
synth=$root/build/release/tools/kavren-synth
if [ ! -x "$synth" ]; then
  cmake --build --preset fuzz -j "$(nproc 2>/dev/null || echo 2)" --target kavren-synth
  synth=$root/build/fuzz/tools/kavren-synth
fi
"$synth" demo "$work/synth/demo" >/dev/null
"$synth" suite "$work/synth/suite" >/dev/null
# The small bench in every separator form: tabs, one blank, padded runs of blanks, and
# runs of blanks and tabs, with short zeros in the forms with blanks.
forms="tab blank blanks mixed"
for form in $forms; do
  "$synth" bench "$work/synth/bench-$form" --ships 2 --separators "$form" >/dev/null
done
catalogue=$work/synth/demo/KAVREN_Asteroids_Data.txt

# Catalogue seeds: the head of a real catalogue, and short, malformed and odd ones.
head -c 20000 "$catalogue" > "$seeds/catalogue/head"
head -n 4 "$catalogue" > "$seeds/catalogue/four-rows"
sed -n '2,4p;4q' "$catalogue" > "$seeds/catalogue/no-header"
head -n 3 "$catalogue" | tr '\t' ' ' | sed 's/$/\r/' > "$seeds/catalogue/crlf"
printf 'ID\n1 64328 nan inf -0 0x1p3 1e400 -1e400 12abc\n2 64328 2.5 0.1\n' \
  > "$seeds/catalogue/odd-numbers"
for form in $forms; do
  head -n 6 "$work/synth/bench-$form/KAVREN_Asteroids_Data.txt" > "$seeds/catalogue/bench-$form"
done

# Solution seeds: the demo (which passes against the catalogue the whole check loads),
# the suite cases (other catalogues: they fail at their first rendezvous) and the
# hand-made demo. Large solutions are cut to their first bytes: libFuzzer works best on
# small inputs.
n=0
for file in "$work/synth/demo/Result.txt" "$work"/synth/suite/*/Result.txt demo/Result.txt; do
  [ -f "$file" ] || continue
  n=$((n + 1))
  head -c 60000 "$file" > "$seeds/solution/synth-$n"
  head -n 40 "$file" > "$seeds/solution/head-$n"
done
head -n 2 "$work/synth/demo/Result.txt" > "$seeds/solution/launch-only"
for form in $forms; do
  head -n 40 "$work/synth/bench-$form/Result.txt" > "$seeds/solution/bench-$form"
done
# Whole-check seeds stay small (see run_target below): the demo's last ship, which passes
# every check on its own, and the heads of the other seeds.
mkdir -p "$seeds/whole_check"
last_ship=$(tail -n 1 "$work/synth/demo/Result.txt" | cut -f 1)
awk -F '\t' -v ship="$last_ship" '$1 == ship' "$work/synth/demo/Result.txt" \
  > "$seeds/whole_check/last-ship"
cp "$seeds"/solution/head-* "$seeds"/solution/bench-* "$seeds/solution/launch-only" \
  "$seeds/whole_check/"

status=0
run_target() {
  local target=$1 seed_dir=$2
  shift 2
  mkdir -p "$work/corpus/$target"
  echo "== fuzz_$target for ${seconds}s"
  # One worker thread for the arcs: libFuzzer follows one thread's coverage.
  if ! (cd "$work" && TMPDIR="$work/tmp" KAVREN_THREADS=1 KAVREN_FUZZ_CATALOGUE="$catalogue" \
        ASAN_OPTIONS=detect_leaks=1:quarantine_size_mb=64 \
        UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        "$root/build/fuzz/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=30 \
        -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$work/artifacts/$target-" "$@" \
        "$work/corpus/$target" "$seed_dir"); then
    echo "fuzz_$target FAILED; the input is in $work/artifacts/"
    status=1
  fi
}

run_target catalogue "$seeds/catalogue" -max_len=65536
run_target solution "$seeds/solution" -max_len=65536 -dict="$root/fuzz/solution.dict"
# The whole check is cut to 8 KiB: an arc whose integration starts at a NaN epoch runs
# to its evaluation budget, some milliseconds per arc line in this instrumented build, so
# larger inputs could pass the per-input timeout without any fault.
run_target whole_check "$seeds/whole_check" -max_len=8192 -timeout=60 \
  -dict="$root/fuzz/solution.dict"
# Sessions edit the demo itself: the input is a list of edits, short by nature.
mkdir -p "$seeds/session"
printf '\001\003\000\020\000\001' > "$seeds/session/one-byte"
printf '\000\002\005\000\100\000\003\003\000\200\000\002' > "$seeds/session/lines-moved"
export KAVREN_FUZZ_SOLUTION="$work/synth/demo/Result.txt"
run_target session "$seeds/session" \
  -max_len=256 -timeout=60
rm -rf "$work/tmp"
exit $status
