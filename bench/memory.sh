#!/usr/bin/env bash
# Peak resident memory of kavren-check against the size of the solution it verifies: the
# demo, the 100-ship bench case, and the demo followed by burning-arc lines after the last
# event (which the rules ignore) up to SIZE_MB (default 1024). Prints, per case, the file
# size, the peak resident set (GNU time's maximum RSS) and their ratio.
#   bench/memory.sh [build folder, default build/release] [SIZE_MB]
set -euo pipefail
build=$(realpath "${1:-build/release}")
size_mb=${2:-1024}
if [ ! -x /usr/bin/time ]; then
  echo "bench/memory.sh needs GNU time: apt-get install time" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$build/tools/kavren-synth" demo "$work/demo" >/dev/null
"$build/tools/kavren-synth" bench "$work/bench" --ships 100 >/dev/null
mkdir "$work/large"
cp "$work/demo/KAVREN_Asteroids_Data.txt" "$work/large/"
ship=$(tail -n 1 "$work/demo/Result.txt" | cut -f 1)
{
  cat "$work/demo/Result.txt"
  # Blocks of 64 Ki identical lines, repeated up to the size.
  line=$(printf '%s\t-1\t69807\t%s\t%s\t%s' "$ship" \
    0.10000000000000001 -0.20000000000000001 0.29999999999999999)
  block=$(yes "$line" | head -n 65536 || true)  # yes ends on a closed pipe
  block_bytes=$(( ${#block} + 1 ))
  for ((k = 0; k < size_mb * 1048576 / block_bytes; ++k)); do printf '%s\n' "$block"; done
} >"$work/large/Result.txt"

printf '%-10s %12s %14s %10s  %s\n' case "file (MB)" "peak RSS (MB)" "RSS/size" verdict
for case in demo bench large; do
  bytes=$(stat -c %s "$work/$case/Result.txt")
  kb=$(cd "$work/$case" && /usr/bin/time -f %M -o "$work/rss" "$build/kavren-check" \
    >"$work/out" 2>/dev/null; cat "$work/rss")
  awk -v c="$case" -v b="$bytes" -v k="$kb" -v v="$(head -n 1 "$work/out")" \
    'BEGIN { printf "%-10s %12.2f %14.1f %10.2f  %s\n", c, b / 1048576, k / 1024, k * 1024 / b, v }'
done
