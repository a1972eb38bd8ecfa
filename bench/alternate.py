#!/usr/bin/python3
"""Whole-process times of two or more kavren-check builds on one folder, run in turn.

Usage: bench/alternate.py FOLDER RUNS CHECKER [CHECKER ...] [--threads N ...]

Each round runs every checker once (in the order given, then reversed on the next
round, so that none is always first after another's run), in FOLDER, with its output
discarded, for each KAVREN_THREADS value given (default 1 and 2). Prints the median and
the quartiles of the wall times in ms per checker and worker count, and each median's
ratio to the first checker's. The checkers' stdout must agree, or the script stops.
"""
import os
import statistics
import subprocess
import sys
import time


def run(checker, folder, threads):
    env = dict(os.environ, KAVREN_THREADS=str(threads))
    start = time.perf_counter()
    out = subprocess.run([checker], cwd=folder, env=env, stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL, check=False).stdout
    return (time.perf_counter() - start) * 1e3, out


def main(argv):
    threads = [1, 2]
    if "--threads" in argv:
        at = argv.index("--threads")
        threads = [int(t) for t in argv[at + 1:]]
        argv = argv[:at]
    if len(argv) < 4:
        sys.exit(__doc__)
    folder, runs, checkers = argv[1], int(argv[2]), [os.path.abspath(c) for c in argv[3:]]
    for workers in threads:
        times = {c: [] for c in checkers}
        outputs = set()
        for r in range(runs):
            for checker in checkers if r % 2 == 0 else reversed(checkers):
                ms, out = run(checker, folder, workers)
                times[checker].append(ms)
                outputs.add(out)
        if len(outputs) != 1:
            sys.exit("the checkers' outputs differ")
        base = statistics.median(times[checkers[0]])
        print(f"{folder}: {workers} worker(s), {runs} runs each")
        for checker in checkers:
            t = sorted(times[checker])
            q = statistics.quantiles(t, n=4) if len(t) > 1 else [t[0]] * 3
            med = statistics.median(t)
            print(f"  {med:8.1f} ms (quartiles {q[0]:.1f}-{q[2]:.1f})"
                  f"  x{med / base:.3f}  {checker}")


if __name__ == "__main__":
    main(sys.argv)
