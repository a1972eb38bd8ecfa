#!/usr/bin/env python3
"""Verifies a solution and prints the rules it meets with the least room to spare.

    examples/tightest_constraints.py <folder> [count]

The folder holds KAVREN_Asteroids_Data.txt and Result.txt (e.g. one made by
`kavren-synth demo <folder>`). Rules are ranked by their margin relative to the limit,
so that kilometres, kilograms and newtons compare.
"""
import math
import pathlib
import sys

import kavren


def relative_margin(c):
    """The margin as a fraction of the limit (the margin itself for a zero limit)."""
    return c.margin / abs(c.limit) if c.limit else c.margin


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    catalogue = kavren.Catalogue(folder / "KAVREN_Asteroids_Data.txt")
    report = kavren.verify(folder / "Result.txt", catalogue, mode="all")
    print(report)
    print(report.checker_output, end="")
    evaluated = [c for c in report.constraints if c.evaluations and not math.isnan(c.margin)]
    evaluated.sort(key=relative_margin)
    print(f"\n{'rule':<32} {'worst':>14} {'':2} {'limit':>10} {'unit':<5} "
          f"{'margin':>12} {'relative':>9} {'line':>6} {'ship':>4}")
    for c in evaluated[:count]:
        print(f"{c.rule:<32} {c.worst:>14.6g} {c.relation:2} {c.limit:>10.6g} {c.unit:<5} "
              f"{c.margin:>12.6g} {relative_margin(c):>9.3%} {c.line:>6} {c.ship:>4}")
    for finding in report.findings:
        print(f"violated: {finding.code} line {finding.lines} margin {finding.margin:.6g} "
              f"{finding.unit}")


if __name__ == "__main__":
    main()
