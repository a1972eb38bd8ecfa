"""The Python module on synthesised scenarios: the demo, faults planted in it with known
sizes, every way of handing over a solution, bad calls, threads and trajectories.

Run by CTest (python.pytest) with PYTHONPATH at the built module and KAVREN_SYNTH and
KAVREN_CHECK naming the built programs; kavren-check itself gives the expected
verdict text and exit status.
"""

import json
import math
import os
import pathlib
import subprocess
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

import kavren

ROOT = pathlib.Path(__file__).resolve().parents[2]
SYNTH = os.environ.get("KAVREN_SYNTH", str(ROOT / "build/release/tools/kavren-synth"))
CHECK = os.environ.get("KAVREN_CHECK", str(ROOT / "build/release/kavren-check"))
CATALOGUE = "KAVREN_Asteroids_Data.txt"

# Units the report may state, in SI.
SI = {"km": 1e3, "m": 1.0, "km/s": 1e3, "m/s": 1.0, "kg": 1.0, "N": 1.0}


@pytest.fixture(scope="session")
def demo(tmp_path_factory):
    folder = tmp_path_factory.mktemp("demo")
    subprocess.run([SYNTH, "demo", str(folder)], check=True, capture_output=True)
    return folder


@pytest.fixture(scope="session")
def catalogue(demo):
    return kavren.Catalogue(demo / CATALOGUE)


def rows(text):
    return [line.split() for line in text.splitlines()]


def event_pairs(lines, ship):
    """1-based numbers of the first lines of a ship's event pairs (ten tokens)."""
    numbered = [n for n, t in enumerate(lines, 1) if len(t) == 10 and t[0] == str(ship)]
    return numbered[::2]


def edited(demo_text, edits):
    """The demo with tokens changed: edits map (1-based line, token) to a function."""
    lines = demo_text.splitlines()
    for (n, k), change in edits.items():
        tokens = lines[n - 1].split()
        tokens[k] = repr(change(float(tokens[k])))
        lines[n - 1] = "\t".join(tokens)
    return "\n".join(lines) + "\n"


def multi_fault(demo_text):
    """Two faults of known size in two ships, and the findings they must give:
    ship 4's last Earth drop 2.5 m/s faster on both its lines (its coast misses the
    stated velocity), ship 5's last rendezvous 2 kg heavier on both lines (its arc loses
    2 kg too little)."""
    lines = rows(demo_text)
    drop = event_pairs(lines, 4)[-1]
    meet = event_pairs(lines, 5)[-1]
    assert lines[drop - 1][1] == "-3" and lines[meet - 1][1] == "1017", "demo layout changed"
    edits = {(drop, 6): lambda v: v + 0.0025, (drop + 1, 6): lambda v: v + 0.0025,
             (meet, 9): lambda v: v + 2.0, (meet + 1, 9): lambda v: v + 2.0}
    expected = [  # code, line, ship, value, limit in SI
        ("Error202", drop, 4, 2.5, 1.0),
        ("Error203", meet, 5, 2.0, 0.001),
    ]
    return edited(demo_text, edits), expected


def run_check(folder, solution_text, catalogue_file):
    """kavren-check's stdout, exit status and score file for a solution."""
    (folder / "Result.txt").write_text(solution_text)
    (folder / CATALOGUE).symlink_to(catalogue_file)
    done = subprocess.run([CHECK], cwd=folder, capture_output=True, text=True)
    score = folder / "ScoreData.txt"
    return done.stdout, done.returncode, score.read_text() if score.exists() else None


def test_demo_is_accepted_with_its_summary(demo, catalogue):
    expected_out = (demo / "expected_stdout.txt").read_text()
    ships, asteroids, mass = [int(w) for w in expected_out.split() if w.isdigit()]
    for mode in ("first", "all"):
        report = kavren.verify(demo / "Result.txt", catalogue, mode=mode)
        assert report.outcome == "verified" and report.accepted and report.exit_status == 0
        assert report.checker_output == expected_out
        assert report.score_file == (demo / "expected_ScoreData.txt").read_text()
        assert report.findings == [] and report.constraints
        assert all(c.passed and c.violations == 0 for c in report.constraints)
        s = report.summary
        assert (s.ships, s.mined_asteroids) == (ships, asteroids)
        assert s.total_resource_mass == pytest.approx(mass)
        assert [p.ship for p in s.per_ship] == list(range(1, ships + 1))
        assert sum(p.resources for p in s.per_ship) == pytest.approx(mass)
        assert "accepted" in repr(report)


def test_faults_are_each_found_with_their_margin(demo, catalogue, tmp_path):
    text, expected = multi_fault((demo / "Result.txt").read_text())
    report = kavren.verify(text, catalogue, mode="all")
    assert report.outcome == "verified" and not report.accepted
    assert [(f.code, f.lines[0], f.ship) for f in report.findings] == \
        [(code, line, ship) for code, line, ship, _, _ in expected]
    for f, (_, _, _, value, limit) in zip(report.findings, expected):
        scale = SI[f.unit]
        assert f.value * scale == pytest.approx(value, rel=1e-6)
        assert f.limit * scale == pytest.approx(limit, rel=1e-9)
        assert f.margin * scale == pytest.approx(limit - value, rel=1e-6)
        assert f.code in repr(f)
    assert [f.first for f in report.findings] == [True, False]
    violated = {c.code for c in report.constraints if not c.passed}
    assert violated == {code for code, *_ in expected}
    assert all(c.margin < 0 for c in report.constraints if not c.passed)

    # Mode "first" is kavren-check's run: its text, its status, its score file.
    out, status, score = run_check(tmp_path, text, demo / CATALOGUE)
    first = kavren.verify(text, catalogue)
    assert (first.checker_output, first.exit_status, first.score_file) == (out, status, score)
    assert [f.code for f in first.findings] == [expected[0][0]]
    assert report.findings[0].message == first.findings[0].message
    assert out.startswith(first.findings[0].message)
    assert report.findings[0].exit_status == status

    # The JSON form: the report's members in order, the same values as the attributes.
    d = report.to_dict()
    assert list(d) == ["schema", "outcome", "error", "checker_output", "exit_status",
                       "score_file", "accepted", "findings", "constraints", "warnings",
                       "summary"]
    assert d["schema"] == 1 and d["outcome"] == "verified"
    assert [(f["code"], f["margin"]) for f in d["findings"]] == \
        [(f.code, f.margin) for f in report.findings]
    assert json.loads(json.dumps(d)) == d


@pytest.mark.parametrize("form", ["str", "bytes", "bytearray", "path", "str path"])
def test_every_form_of_solution_gives_the_same_report(demo, catalogue, tmp_path, form):
    text, _ = multi_fault((demo / "Result.txt").read_text())
    path = tmp_path / "Result.txt"
    path.write_text(text)
    solution = {"str": text, "bytes": text.encode(), "bytearray": bytearray(text.encode()),
                "path": path, "str path": os.fspath(path)}[form]
    expected = kavren.verify(text, catalogue, mode="all").to_dict()
    if form == "str path":  # a str is the text itself, never a file name
        assert kavren.verify(solution, catalogue, mode="all").to_dict() != expected
    else:
        assert kavren.verify(solution, catalogue, mode="all").to_dict() == expected
    text_catalogue = kavren.Catalogue.from_text((demo / CATALOGUE).read_bytes())
    assert kavren.verify(text, text_catalogue, mode="all").to_dict() == expected


@pytest.mark.parametrize("call, error, words", [
    (lambda d, c: kavren.Catalogue(d / "missing" / CATALOGUE), FileNotFoundError, "missing"),
    (lambda d, c: kavren.verify(d / "no-such-Result.txt", c), FileNotFoundError,
     "no-such-Result.txt"),
    (lambda d, c: kavren.verify("", c, mode="every"), ValueError, "mode"),
    (lambda d, c: kavren.verify("", c, threads=0), ValueError, "threads"),
    (lambda d, c: kavren.verify(42, c), TypeError, "int"),
    (lambda d, c: kavren.verify("", "catalogue"), TypeError, "Catalogue"),
])
def test_bad_calls_raise_clear_exceptions_and_print_nothing(demo, catalogue, capfd, call,
                                                             error, words):
    with pytest.raises(error) as raised:
        call(demo, catalogue)
    assert words in str(raised.value)
    assert capfd.readouterr() == ("", "")


def test_calls_in_parallel_and_in_turn_give_identical_reports(demo, catalogue):
    good = (demo / "Result.txt").read_text()
    bad, _ = multi_fault(good)
    kinds = [(t, m) for t in (good, bad, good[: len(good) // 3], "x\n") for m in ("first", "all")]
    expected = {k: kavren.verify(k[0], catalogue, mode=k[1], threads=1).to_dict() for k in kinds}
    assert expected[kinds[0]]["accepted"] and not expected[kinds[2]]["accepted"]
    jobs = [(k, n) for k in kinds for n in (1, 2, None)] * 4
    with ThreadPoolExecutor(max_workers=4) as pool:
        reports = list(pool.map(
            lambda job: kavren.verify(job[0][0], catalogue, mode=job[0][1], threads=job[1]), jobs))
    for (kind, _), report in zip(jobs, reports):
        assert report.outcome == "verified" and report.to_dict() == expected[kind]


def test_a_session_gives_the_reports_of_verify_and_takes_turns(demo, catalogue):
    good = (demo / "Result.txt").read_text()
    bad, _ = multi_fault(good)
    texts = [good, bad, good[: len(good) // 3], "x\n", good]
    expected = {m: [kavren.verify(t, catalogue, mode=m).to_dict() for t in texts]
                for m in ("first", "all")}
    session = kavren.Session(catalogue)
    for mode, reports in expected.items():
        assert [session.verify(t, mode=mode).to_dict() for t in texts] == reports
    again = session.verify(good).statistics
    ships = expected["first"][0]["summary"]["ships"]
    assert (again.ships_verified, again.ships_cached) == (0, ships)
    assert session.cached_ships > 0 and session.cache_bytes > 0
    with ThreadPoolExecutor(max_workers=4) as pool:
        reports = list(pool.map(lambda t: session.verify(t, mode="all").to_dict(), texts * 4))
    assert reports == expected["all"] * 4
    session.clear()
    assert session.cached_ships == 0
    with pytest.raises(ValueError, match="cache_bytes"):
        kavren.Session(catalogue, cache_bytes=0)


def test_trajectories_run_from_launch_to_the_last_event(demo, catalogue):
    lines = rows((demo / "Result.txt").read_text())
    report = kavren.verify(demo / "Result.txt", catalogue, trajectories=True)
    assert kavren.verify(demo / "Result.txt", catalogue).trajectories == []
    assert len(report.trajectories) == report.summary.ships
    for ship, states in enumerate(report.trajectories, 1):
        assert states.dtype == np.float64 and states.shape[1] == 9 and len(states) > 2
        assert not states.flags.writeable
        assert np.all(np.diff(states[:, 0]) >= 0)
        assert np.all((states[:, 8] >= 0) & (states[:, 8] <= 0.6 + 1e-8))
        pairs = event_pairs(lines, ship)
        # First row: the state after launch (the launch pair's second line).
        launch = np.array(lines[pairs[0]][2:10], dtype=float)
        np.testing.assert_array_equal(states[0, :8], launch)
        # Last row: the state the last event states on arrival (its first line).
        arrival = np.array(lines[pairs[-1] - 1][2:10], dtype=float)
        assert states[-1, 0] == arrival[0]
        assert np.linalg.norm(states[-1, 1:4] - arrival[1:4]) < 1.0  # km
        assert np.linalg.norm(states[-1, 4:7] - arrival[4:7]) < 1e-6  # km/s
        assert states[-1, 7] == pytest.approx(arrival[7], abs=1e-6)  # kg
        assert math.isclose(report.summary.per_ship[ship - 1].launch_epoch, states[0, 0])


def test_stubs_name_what_the_module_defines():
    import ast
    stubs = ast.parse((ROOT / "python" / "kavren.pyi").read_text())
    public = lambda names: {n for n in names if not n.startswith("_")}
    classes = {c.name: c for c in stubs.body if isinstance(c, ast.ClassDef)}
    functions = {f.name for f in stubs.body if isinstance(f, ast.FunctionDef)}
    assert public(dir(kavren)) == set(classes) | functions
    for name, c in classes.items():
        members = public(f.name for f in c.body if isinstance(f, ast.FunctionDef))
        assert members == public(dir(getattr(kavren, name))), name
        assert getattr(kavren, name).__doc__
