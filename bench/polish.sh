#!/usr/bin/env bash
# kavren-polish on synthesised near misses.
#  1. Success rate: `cases` near misses of kavren-synth nearmiss (10 ships, one to three
#     arcs in different ships turned so that each misses by 1 to 20 times the position
#     limit); a case succeeds when kavren-check prints, for the polished file, exactly the
#     verdict of the valid solution the miss was made from. Refused arcs are listed.
#  2. Time: the 100-ship bench with three arcs off (kavren-synth nearmiss --ships 100
#     --arcs 3), `bench_cases` cases, each polished `repetitions` times by the whole
#     program with its default workers; the median wall and CPU time per case (GNU time).
#   bench/polish.sh [build folder, default build/release] [cases, default 100]
#                   [bench_cases, default 3] [repetitions, default 5]
set -euo pipefail
build=$(realpath "${1:-build/release}")
cases=${2:-100}
bench_cases=${3:-3}
repetitions=${4:-5}
synth="$build/tools/kavren-synth"
polish="$build/tools/polish/kavren-polish"
check="$build/kavren-check"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
echo "machine: $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"

ok=0
arcs=0
for ((seed = 1; seed <= cases; ++seed)); do
  d="$work/s$seed"
  "$synth" nearmiss "$d" --seed "$seed" >/dev/null
  arcs=$((arcs + $(tail -n +2 "$d/misses.txt" | wc -l)))
  (cd "$d" && "$polish" --out polished.txt >polish.txt) || true
  mkdir "$d/check"
  cp "$d/KAVREN_Asteroids_Data.txt" "$d/check/"
  cp "$d/polished.txt" "$d/check/Result.txt"
  (cd "$d/check" && "$check" >stdout.txt) || true
  if cmp -s "$d/check/stdout.txt" "$d/expected_stdout.txt"; then
    ok=$((ok + 1))
  else
    echo "seed $seed:"
    grep -v ": polished, " "$d/polish.txt" | sed 's/^/  /'
  fi
done
if [ "$cases" -gt 0 ]; then
misses=$(for ((seed = 1; seed <= cases; ++seed)); do tail -n +2 "$work/s$seed/misses.txt"; done)
echo "success: $ok of $cases near misses ($arcs arcs) polished to an accepted file"
echo "$misses" | awk -F'\t' 'NR == 1 {lo = $6; hi = $6} {if ($6 < lo) lo = $6; if ($6 > hi) hi = $6}
  END {printf "misses from %.0f km to %.0f km\n", lo, hi}'
cat "$work"/s*/polish.txt | grep ": polished, " |
  sed -E 's/.*turn ([0-9.e+-]+) deg.* ([0-9]+) iterations, ([0-9]+) integrations/\1 \2 \3/' |
  sort -g | awk '{t[NR] = $1; it += $2; n += $3}
    END {printf "turns: median %.3g deg, largest %.3g deg; ", t[int((NR + 1) / 2)], t[NR]
         printf "%.1f iterations and %.1f integrations per arc on average\n", it / NR, n / NR}'
fi

for ((seed = 1; seed <= bench_cases; ++seed)); do
  d="$work/bench$seed"
  "$synth" nearmiss "$d" --ships 100 --arcs 3 --seed "$seed" >/dev/null
  times=()
  cpu=()
  for ((k = 0; k < repetitions; ++k)); do
    (cd "$d" && /usr/bin/time -f "%e %U %S" -o "$work/time" "$polish" --out polished.txt \
      >polish.txt) || true
    read -r wall user system <"$work/time"
    times+=("$wall")
    cpu+=("$(echo "$user + $system" | bc)")
  done
  median=$(printf '%s\n' "${times[@]}" | sort -g |
    awk '{v[NR] = $1} END {print v[int((NR + 1) / 2)]}')
  median_cpu=$(printf '%s\n' "${cpu[@]}" | sort -g |
    awk '{v[NR] = $1} END {print v[int((NR + 1) / 2)]}')
  verdict=$(sed -n '/^Verdict of/{n;p;q}' "$d/polish.txt")
  echo "100-ship bench, three arcs off, case $seed: median $median s wall, $median_cpu s CPU" \
    "of $repetitions runs ($verdict)"
done
if [ "$bench_cases" -gt 0 ]; then
  echo "example output (case $bench_cases):"
  sed 's/^/  /' "$work/bench$bench_cases/polish.txt"
fi
