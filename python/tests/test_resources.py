"""The module under limits: the byte limit and the deadline, memory that
cannot be had and unreadable paths (bench/soak.py measures resident memory over many
calls; test_kavren.py checks that they give one report).

Run by CTest (python.pytest) beside test_kavren.py.
"""

import os
import pathlib
import subprocess
import sys

import pytest

import kavren

ROOT = pathlib.Path(__file__).resolve().parents[2]
SYNTH = os.environ.get("KAVREN_SYNTH", str(ROOT / "build/release/tools/kavren-synth"))
CATALOGUE = "KAVREN_Asteroids_Data.txt"


def synthesise(tmp_path_factory, *args):
    folder = tmp_path_factory.mktemp(args[0])
    subprocess.run([SYNTH, args[0], str(folder), *args[1:]], check=True, capture_output=True)
    return folder


@pytest.fixture(scope="module")
def demo(tmp_path_factory):
    return synthesise(tmp_path_factory, "demo")


@pytest.fixture(scope="module")
def bench(tmp_path_factory):
    return synthesise(tmp_path_factory, "bench", "--ships", "100")


def hostile(text):
    """The solution with every event that ends an arc with lines at MJD 99999: reporting
    every finding, each such arc's last coast runs to its evaluation budget."""
    lines = text.splitlines()
    count = [len(line.split()) for line in lines]
    for k in range(1, len(lines)):
        tokens = lines[k].split()
        if count[k - 1] == 6 and count[k] == 10 and tokens[1] != "0":
            tokens[2] = "99999"
            lines[k] = "\t".join(tokens)
    return "\n".join(lines) + "\n"


def test_limits_return_a_report_without_verdict(demo, bench):
    catalogue = kavren.Catalogue(demo / CATALOGUE)
    text = (demo / "Result.txt").read_bytes()
    assert kavren.verify(text, catalogue, max_bytes=len(text)).outcome == "verified"
    over = kavren.verify(text, catalogue, max_bytes=len(text) - 1)
    assert (over.outcome, over.accepted, over.checker_output) == ("limit_reached", False, "")
    assert over.error == (f"the solution holds {len(text)} bytes, "
                          f"more than the limit of {len(text) - 1}")

    slow = hostile((bench / "Result.txt").read_text())
    # A millisecond: far less than reading the file takes.
    late = kavren.verify(slow, kavren.Catalogue(bench / CATALOGUE), mode="all", threads=1,
                         deadline=0.001)
    assert late.outcome == "limit_reached"
    assert late.error == "the deadline of 1 ms passed while the solution was verified"

    for bad in ({"max_bytes": 0}, {"deadline": 0.0}, {"deadline": float("nan")}):
        with pytest.raises(ValueError):
            kavren.verify(text, catalogue, **bad)
    for path, error in ((demo / "missing.txt", FileNotFoundError), (demo, OSError)):
        with pytest.raises(error):
            kavren.verify(path, catalogue)


def test_memory_that_cannot_be_had_raises_memory_error(bench):
    # In a child interpreter whose address space is capped a little above what it holds
    # once the catalogue and the text are loaded: the states along the arcs of four times
    # the 100-ship bench need far more.
    program = f"""
import resource, kavren, numpy
catalogue = kavren.Catalogue({str(bench / CATALOGUE)!r})
text = open({str(bench / "Result.txt")!r}, "rb").read() * 4
with open("/proc/self/statm") as statm:
    size = int(statm.read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (size + (8 << 20), resource.RLIM_INFINITY))
try:
    kavren.verify(text, catalogue, threads=1, trajectories=True)
except MemoryError as e:
    print("MemoryError:", e)
"""
    done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True,
                          env=dict(os.environ))
    assert (done.returncode, done.stdout) == (
        0, "MemoryError: out of memory while verifying the solution\n"), done.stderr

