"""Resident memory of the Python module over many calls of verify() on the demo (a folder
made by `kavren-synth demo <folder>`): the demo, the demo with a thrust over the limit, the
demo cut off inside a line and text that is no solution, in both modes. Prints the growth
of the resident set after the first tenth of the calls.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/soak.py <demo folder> [calls]
"""

import os
import sys

import kavren


def resident_bytes():
    with open("/proc/self/statm") as statm:
        return int(statm.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def main(folder, calls=1000):
    catalogue = kavren.Catalogue(os.path.join(folder, "KAVREN_Asteroids_Data.txt"))
    with open(os.path.join(folder, "Result.txt")) as f:
        text = f.read()
    lines = text.splitlines()
    failing = "\n".join(lines[:4] + [lines[4].replace("\t0\t0\t0", "\t0.7\t0\t0")] + lines[5:])
    cases = [text, failing + "\n", text[: len(text) // 3], "x\n"]
    warm = max(1, calls // 10)
    for k in range(calls):
        kavren.verify(cases[k % len(cases)], catalogue, mode=("first", "all")[k // 4 % 2],
                      threads=1 + k % 3)
        if k + 1 == warm:
            after_warm_up = resident_bytes()
    growth = resident_bytes() - after_warm_up
    print(f"python: {calls} calls, resident memory {growth / 1e6:+.2f} MB after the first {warm}")


if __name__ == "__main__":
    main(sys.argv[1], *(int(a) for a in sys.argv[2:3]))
