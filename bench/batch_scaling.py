#!/usr/bin/env python3
"""Figures of kavren.batch on a local Dask cluster (worker processes on 127.0.0.1).

    PYTHONPATH=build/release/python /usr/bin/python3 bench/batch_scaling.py \
        [--synth build/release/tools/kavren-synth] [--work /tmp/kavren-batch-bench] [--runs 3]

- scaling: 16 distinct 100-ship solutions (the bench case, each with its last event's
  mass stated a little heavier, within the mass rule) given as paths, on 1 and on 2 worker
  processes of one thread; the cluster's start is excluded, each batch timed --runs times
  (the first run includes each worker's loading of the catalogue);
- per-task overhead: 400 small solutions (variants of the demo) verified in process one
  after the other, on the cluster in tasks of several solutions, and on the cluster one
  solution per task; a task's overhead is what the second way costs more than the
  first, in the workers' time, per task added;
- bytes against a path: one 30 MB solution sent as bytes (through the scheduler) or
  named by its path (read by the worker).
"""

import argparse
import os
import pathlib
import statistics
import subprocess
import time

import distributed

import kavren
import kavren.batch as batch

ROOT = pathlib.Path(__file__).resolve().parents[1]
CATALOGUE = "KAVREN_Asteroids_Data.txt"


def variants(folder, count, out):
    """`count` copies of folder/Result.txt, the k-th with its last event's mass stated
    0.0005 * k / count kg heavier on both lines (the mass rule allows 0.001 kg): distinct
    files, the same work."""
    out.mkdir(parents=True, exist_ok=True)
    lines = (folder / "Result.txt").read_text().splitlines()
    last = max(i for i, line in enumerate(lines) if len(line.split()) == 10) - 1
    paths = []
    for k in range(count):
        edited = list(lines)
        for i in (last, last + 1):
            tokens = edited[i].split()
            tokens[9] = repr(float(tokens[9]) + 0.0005 * k / count)
            edited[i] = "\t".join(tokens)
        path = out / f"Result-{k:03d}.txt"
        path.write_text("\n".join(edited) + "\n")
        paths.append(path)
    return paths


def timed(call, runs):
    seconds = []
    for _ in range(runs):
        started = time.perf_counter()
        result = call()
        seconds.append(time.perf_counter() - started)
    return seconds, result


def cluster(workers):
    local = distributed.LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                                     host="127.0.0.1", dashboard_address=None)
    return local, distributed.Client(local)


def show(name, seconds):
    print(f"{name:<58} median {statistics.median(seconds):7.3f} s, best {min(seconds):7.3f} s  "
          f"(runs: {', '.join(f'{s:.3f}' for s in seconds)})", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--synth", default=str(ROOT / "build/release/tools/kavren-synth"))
    parser.add_argument("--work", type=pathlib.Path,
                        default=pathlib.Path("/tmp/kavren-batch-bench"))
    parser.add_argument("--runs", type=int, default=3)
    args = parser.parse_args()
    args.work.mkdir(parents=True, exist_ok=True)
    big, small = args.work / "bench", args.work / "demo"
    if not (big / "Result.txt").exists():
        subprocess.run([args.synth, "bench", str(big), "--ships", "100"], check=True)
    if not (small / "Result.txt").exists():
        subprocess.run([args.synth, "demo", str(small)], check=True)
    large = variants(big, 16, args.work / "large")
    little = variants(small, 400, args.work / "small")
    print(f"load average before: {os.getloadavg()[0]:.2f}; cores: {os.cpu_count()}")

    # Scaling: 1 and 2 worker processes.
    medians = {}
    for workers in (1, 2):
        local, client = cluster(workers)
        seconds, table = timed(lambda: batch.verify_many(large, big / CATALOGUE, client=client),
                               args.runs)
        assert table.accepted.all() and len(table) == 16, table
        show(f"16 x 100-ship solutions, {workers} worker process(es)", seconds)
        medians[workers] = statistics.median(seconds), min(seconds)
        if workers == 2:
            two = (local, client)
        else:
            client.close()
            local.close()
    print(f"speed-up with 2 workers: {medians[1][0] / medians[2][0]:.2f} (medians), "
          f"{medians[1][1] / medians[2][1]:.2f} (best runs)")
    local, client = two

    # Per-task overhead on small solutions.
    catalogue = kavren.Catalogue(small / CATALOGUE)
    inline, _ = timed(lambda: [kavren.verify(p, catalogue, threads=1) for p in little],
                      args.runs)
    show("400 demo-sized solutions in process, one after the other", inline)
    per_solution = statistics.median(inline) / len(little)
    chunked, table = timed(lambda: batch.verify_many(little, small / CATALOGUE, client=client),
                           args.runs)
    assert table.accepted.all()
    tasks = len(batch._chunks(batch._items(little), 2))
    show(f"400 demo-sized solutions, 2 workers, {tasks} tasks", chunked)
    saved = batch._TASK_SECONDS
    batch._TASK_SECONDS = (0.0, 0.0)  # one solution per task
    single, _ = timed(lambda: batch.verify_many(little, small / CATALOGUE, client=client),
                      args.runs)
    batch._TASK_SECONDS = saved
    show("400 demo-sized solutions, 2 workers, one per task", single)
    # A task's own cost: what one task per solution adds over a few tasks, per task, in
    # the workers' time (two workers); and the cost per solution in either way.
    extra = 2 * (statistics.median(single) - statistics.median(chunked))
    print(f"overhead per task: {1000 * extra / (len(little) - tasks):.1f} ms of a worker's "
          f"time; per solution: {2000 * statistics.median(chunked) / len(little):.2f} ms in "
          f"{tasks} tasks, {2000 * statistics.median(single) / len(little):.2f} ms one per "
          f"task, {1000 * per_solution:.2f} ms in process")

    # A 30 MB solution as bytes or as a path.
    path = big / "Result.txt"
    text = path.read_bytes()
    for name, solution in (("a path", path), ("bytes", text)):
        seconds, table = timed(lambda: batch.verify_many([solution], big / CATALOGUE,
                                                         client=client), args.runs + 2)
        assert table.accepted.all()
        show(f"one {len(text) / 1e6:.1f} MB solution as {name}, 2 workers", seconds)
    client.close()
    local.close()
    print(f"load average after: {os.getloadavg()[0]:.2f}")


if __name__ == "__main__":
    main()
