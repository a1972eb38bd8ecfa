#!/usr/bin/env python3
"""Verifies every candidate solution of a folder in parallel, one thread per candidate.

    examples/verify_folder.py <scenario folder> [candidates folder] [--variants N]

The catalogue is <scenario folder>/KAVREN_Asteroids_Data.txt, loaded once and shared.
Candidates are the files Result*.txt of the candidates folder (default: the scenario
folder). --variants N first writes N variants of the scenario's Result.txt into
<scenario folder>/candidates, the k-th with its last rendezvous stated 0.0005 * k kg
heavier (the mass rule allows 0.001 kg), and verifies that folder.
verify() releases the interpreter lock, so the threads verify at the same time.
"""
import argparse
import os
import pathlib
import time
from concurrent.futures import ThreadPoolExecutor

import kavren


def write_variants(scenario, count):
    folder = scenario / "candidates"
    folder.mkdir(exist_ok=True)
    lines = (scenario / "Result.txt").read_text().splitlines()
    last_event = max(i for i, line in enumerate(lines) if len(line.split()) == 10) - 1
    for k in range(count):
        out = list(lines)
        for i in (last_event, last_event + 1):  # both lines of the event pair
            t = out[i].split()
            t[9] = repr(float(t[9]) + 0.0005 * k)
            out[i] = "\t".join(t)
        (folder / f"Result-{k:03d}.txt").write_text("\n".join(out) + "\n")
    return folder


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("scenario", type=pathlib.Path)
    parser.add_argument("candidates", type=pathlib.Path, nargs="?")
    parser.add_argument("--variants", type=int, default=0)
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    args = parser.parse_args()
    catalogue = kavren.Catalogue(args.scenario / "KAVREN_Asteroids_Data.txt")
    folder = args.candidates or args.scenario
    if args.variants:
        folder = write_variants(args.scenario, args.variants)
    files = sorted(folder.glob("Result*.txt"))

    started = time.perf_counter()
    with ThreadPoolExecutor(max_workers=args.workers) as pool:
        # One arc worker per candidate: the candidates themselves are the parallel work.
        reports = pool.map(lambda f: kavren.verify(f, catalogue, mode="all", threads=1), files)
        for path, report in zip(files, reports):
            if report.accepted:
                s = report.summary
                print(f"{path.name:<20} accepted  {s.ships} ships, {s.mined_asteroids} asteroids, "
                      f"{s.total_resource_mass:g} kg")
            elif report.findings:
                first = report.findings[0]
                print(f"{path.name:<20} rejected  {len(report.findings)} findings, first "
                      f"{first.code} line {first.lines} margin {first.margin:.6g} {first.unit}")
            else:
                print(f"{path.name:<20} {report.outcome}: {report.error}")
    print(f"{len(files)} candidates in {time.perf_counter() - started:.2f} s "
          f"with {args.workers} threads")


if __name__ == "__main__":
    main()
