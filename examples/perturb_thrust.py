#!/usr/bin/env python3
"""Weakens one thrust phase step by step and prints how the margins of its arc's end
state (position and mass) move, the way an optimiser sees the rules it must satisfy.

    examples/perturb_thrust.py <folder> [step] [steps]

The folder holds KAVREN_Asteroids_Data.txt and Result.txt (e.g. one made by
`kavren-synth demo <folder>`). The first phase that thrusts is scaled by
1 - k * step (k = 0 .. steps); each candidate is verified in memory, nothing is written.
"""
import pathlib
import sys

import kavren


def first_thrust_phase(lines):
    """0-based indices of the first run of thrust lines with a non-zero thrust, and the
    index of the event line that ends the arc."""
    tokens = [line.split() for line in lines]
    start = next(i for i, t in enumerate(tokens)
                 if len(t) == 6 and any(float(u) != 0.0 for u in t[3:6]))
    end = start
    while len(tokens[end + 1]) == 6 and any(float(u) != 0.0 for u in tokens[end + 1][3:6]):
        end += 1
    event = next(i for i in range(end + 1, len(tokens)) if len(tokens[i]) == 10)
    return range(start, end + 1), event


def scaled(lines, phase, factor):
    out = list(lines)
    for i in phase:
        t = out[i].split()
        t[3:6] = [repr(float(u) * factor) for u in t[3:6]]
        out[i] = "\t".join(t)
    return "\n".join(out) + "\n"


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    step = float(sys.argv[2]) if len(sys.argv) > 2 else 0.001
    steps = int(sys.argv[3]) if len(sys.argv) > 3 else 10
    catalogue = kavren.Catalogue(folder / "KAVREN_Asteroids_Data.txt")
    lines = (folder / "Result.txt").read_text().splitlines()
    phase, event = first_thrust_phase(lines)
    print(f"thrust phase on lines {phase.start + 1}..{phase.stop}, "
          f"its arc ends at the event on line {event + 1}")
    # Every other arc of the solution ends where it says, so each end-state rule's worst
    # evaluation is this arc's end as soon as the thrust moves it. The mass rule reacts
    # first: a weaker thrust also burns less propellant.
    rules = ("arc.end_position", "arc.end_mass")
    print(f"{'scale':>8} " + " ".join(f"{r + ' (margin, line)':>36}" for r in rules) + "  verdict")
    for k in range(steps + 1):
        factor = 1.0 - k * step
        report = kavren.verify(scaled(lines, phase, factor), catalogue, mode="all")
        rows = {c.rule: c for c in report.constraints}
        cells = []
        for rule in rules:
            c = rows[rule]
            cells.append(f"{c.worst:>11.6g} {c.unit:<3}({c.margin:>+11.6g}, {c.line:>4})")
        verdict = "accepted" if report.accepted else \
            "rejected: " + ", ".join(f.code for f in report.findings)
        print(f"{factor:>8.4f} " + " ".join(f"{cell:>36}" for cell in cells) + f"  {verdict}")


if __name__ == "__main__":
    main()
