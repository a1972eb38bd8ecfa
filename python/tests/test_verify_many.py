"""kavren.batch: rows equal kavren.verify's verdicts for every synthesised scenario and
every end-to-end error case, on local threads and on a Dask cluster of two worker
processes on 127.0.0.1, for paths and for bytes; a worker killed during a batch; the
command line.

The error cases are the C++ end-to-end tables (tests/support/*error_cases.cpp) written
as files by the built program kavren_error_cases (KAVREN_ERROR_CASES).
kavren.batch is imported by a fixture, after test_kavren.py has compared the package's
names with its stubs.
"""

import functools
import importlib
import math
import os
import pathlib
import signal
import subprocess
import sys
import threading

import pytest

import kavren

ROOT = pathlib.Path(__file__).resolve().parents[2]
SYNTH = os.environ.get("KAVREN_SYNTH", str(ROOT / "build/release/tools/kavren-synth"))
CASES = os.environ.get("KAVREN_ERROR_CASES",
                       str(ROOT / "build/release/tests/kavren_error_cases"))
CATALOGUE = "KAVREN_Asteroids_Data.txt"


@pytest.fixture(scope="module")
def batch():
    return importlib.import_module("kavren.batch")


@pytest.fixture(scope="module")
def client(batch):
    distributed = pytest.importorskip("distributed")
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  host="127.0.0.1", dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def synthesise(root, what, *args):
    subprocess.run([SYNTH, what, str(root / what), *args], check=True, capture_output=True)
    return root / what


@pytest.fixture(scope="module")
def groups(tmp_path_factory):
    """(catalogue path, [solution paths]) for the demo, the suite's cases, a 4-ship bench
    (and its hostile form) and every error case, grouped by catalogue."""
    root = tmp_path_factory.mktemp("batch")
    demo = synthesise(root, "demo")
    found = [(demo / CATALOGUE, [demo / "Result.txt"])]
    suite = synthesise(root, "suite")
    found += [(case / CATALOGUE, [case / "Result.txt"]) for case in sorted(suite.iterdir())]
    bench = synthesise(root, "bench", "--ships", "4")
    found.append((bench / CATALOGUE, [bench / "Result.txt", bench / "Result-late-arrivals.txt"]))
    subprocess.run([CASES, str(root / "cases")], check=True, capture_output=True)
    shared = []
    for case in sorted(p for p in (root / "cases").iterdir() if p.is_dir()):
        own = case / CATALOGUE
        if own.exists() or (case / "no-catalogue").exists():
            found.append((own, [case / "Result.txt"]))  # its own, or a missing one
        else:
            shared.append(case / "Result.txt")
    found.append((root / "cases" / CATALOGUE, shared))
    assert len(shared) > 100
    return found


@functools.lru_cache(maxsize=None)
def catalogue_at(path):
    return kavren.Catalogue(path)


def expected_row(solution, catalogue_path, mode="first"):
    """What kavren.verify says: its report, or the reason it raised."""
    try:
        return kavren.verify(solution, catalogue_at(catalogue_path), mode=mode), None
    except OSError as error:
        return None, str(error)


def check_row(row, solution, catalogue_path, mode="first"):
    report, error = expected_row(solution, catalogue_path, mode)
    if report is None:
        assert (row.outcome, row.error, row.accepted) == ("error", error, False), row.solution
        return
    s = report.summary
    assert (row.outcome, row.accepted, row.exit_status, row.checker_output) == \
        (report.outcome, report.accepted, report.exit_status, report.checker_output)
    assert (row.findings, row.first_code) == \
        (len(report.findings), report.findings[0].code if report.findings else None)
    assert (row.ships, row.mined_asteroids) == (s.ships, s.mined_asteroids)
    assert row.total_resource_mass == s.total_resource_mass
    # The tightest rule passes and has no less room, relative to its limit, than any other.
    room = {c.rule: c.margin / abs(c.limit) if c.limit else c.margin
            for c in report.constraints if c.passed and c.evaluations and not math.isnan(c.margin)}
    if room:
        assert room[row.tightest_rule] == row.tightest_margin == min(room.values())
    else:
        assert row.tightest_rule is None and math.isnan(row.tightest_margin)


@pytest.mark.parametrize("on_cluster, form, catalogue_form", [
    (False, "path", "path"),
    (False, "bytes", "object"),
    (True, "path", "path"),
    (True, "bytes", "object"),
])
def test_rows_equal_verify(batch, groups, request, on_cluster, form, catalogue_form):
    client = request.getfixturevalue("client") if on_cluster else None
    checked = 0
    for catalogue_path, paths in groups:
        if form == "bytes":  # only solutions that can be read have bytes
            paths = [p for p in paths if p.is_file()]
        if catalogue_form == "object":
            if not catalogue_path.exists():
                continue
            catalogue = catalogue_at(catalogue_path)
        else:
            catalogue = catalogue_path
        solutions = [p.read_bytes() for p in paths] if form == "bytes" else paths
        table = batch.verify_many(solutions, catalogue, client=client)
        assert list(table.columns) == list(batch.COLUMNS)
        labels = list(range(len(paths))) if form == "bytes" else [os.fspath(p) for p in paths]
        assert list(table.solution) == labels
        for row, path, solution in zip(table.itertuples(), paths, solutions):
            check_row(row, solution, catalogue_path)
            checked += 1
    assert checked > 100


def test_every_mode_and_option_reaches_the_workers(batch, groups, client):
    catalogue_path, paths = groups[-1]
    for mode in ("first", "all"):
        table = batch.verify_many(paths, catalogue_path, client=client, mode=mode,
                                  reports=True)
        for row, path in zip(table.itertuples(), paths):
            check_row(row, path, catalogue_path, mode)
            report, _ = expected_row(path, catalogue_path, mode)
            assert row.report == (report.to_dict() if report else None)
    limited = batch.verify_many(paths[:3], catalogue_path, client=client, max_bytes=10)
    assert list(limited.outcome) == ["limit_reached"] * 3
    assert all("more than the limit of 10" in e for e in limited.error)
    for bad in ({"mode": "every"}, {"threads": 0}, {"max_bytes": 0}, {"deadline": 0}):
        with pytest.raises(ValueError):
            batch.verify_many(paths, catalogue_path, **bad)
    for solutions in (["Result.txt"], [42]):
        with pytest.raises(TypeError):
            batch.verify_many(solutions, catalogue_path)


def test_a_worker_killed_during_a_batch_costs_only_its_tasks(batch, client, tmp_path):
    bench = synthesise(tmp_path, "bench", "--ships", "20")
    catalogue = kavren.Catalogue(bench / CATALOGUE)
    paths = [bench / "Result.txt", pathlib.Path(tmp_path / "missing.txt")] * 12
    before = client.run(os.getpid)
    outcome = {}
    runner = threading.Thread(target=lambda: outcome.update(
        table=batch.verify_many(paths, catalogue, client=client, mode="all")))
    runner.start()
    victim = None
    while victim is None and runner.is_alive():
        busy = [w for w, tasks in client.processing().items()
                if any(str(t).startswith("kavren-verify") for t in tasks)]
        victim = busy[0] if busy else None
    assert victim is not None, "the batch ended before a task started"
    os.kill(before[victim], signal.SIGKILL)
    assert runner.is_alive(), "the batch ended before the worker was killed"
    runner.join()
    table = outcome["table"]
    assert list(table.solution) == [os.fspath(p) for p in paths]
    expected = {p: expected_row(p, bench / CATALOGUE, "all") for p in set(paths)}
    for row, path in zip(table.itertuples(), paths):
        report, error = expected[path]
        if report is None:
            assert (row.outcome, row.error) == ("error", error)
        else:
            assert (row.outcome, row.accepted, row.checker_output) == \
                ("verified", report.accepted, report.checker_output)
    client.wait_for_workers(2)
    assert before[victim] not in client.run(os.getpid).values()


@pytest.mark.parametrize("args, status, accepted", [
    (["demo/Result.txt"], 0, [True]),
    (["demo/Result.txt", "bad.txt", "--mode", "all"], 1, [True, False]),
    (["demo/Result.txt", "missing.txt", "--local-workers", "2"], 2, [True, False]),
    (["demo/Result.txt", "--catalogue", "missing.txt"], 2, [False]),
    (["demo/Result.txt", "--local-workers", "0"], 2, None),
    (["--mode", "every", "demo/Result.txt"], 2, None),
])
def test_command_line(batch, groups, tmp_path, args, status, accepted):
    demo_catalogue, (demo,) = groups[0]
    (tmp_path / "demo").symlink_to(demo.parent)
    text = demo.read_text().replace("\t0\t0\t0", "\t0.7\t0\t0", 1)  # one thrust too strong
    (tmp_path / "bad.txt").write_text(text)
    catalogue = [] if "--catalogue" in args else ["--catalogue", "demo/" + CATALOGUE]
    done = subprocess.run([sys.executable, "-m", "kavren.batch", *args, *catalogue,
                           "--csv", "out.csv"], cwd=tmp_path, capture_output=True, text=True)
    assert done.returncode == status, done.stderr
    if accepted is None:
        assert not (tmp_path / "out.csv").exists() and done.stderr
        return
    table = pytest.importorskip("pandas").read_csv(tmp_path / "out.csv")
    assert list(table.solution) == [a for a in args if a.endswith(".txt")][:len(accepted)]
    assert list(table.accepted) == accepted
