"""Verification of populations: one table row per solution, verified on local threads or
spread over a Dask cluster.

    import distributed, kavren.batch
    client = distributed.Client("tcp://scheduler:8786")          # or None: local threads
    table = kavren.batch.verify_many(paths, "KAVREN_Asteroids_Data.txt", client=client)
    table[~table.accepted]

On the command line: python3 -m kavren.batch --help.
"""

import math
import os
import pathlib
import sys
import threading
import time
import uuid
import warnings
from concurrent.futures import ThreadPoolExecutor
from typing import Any, Iterable, Optional, Union

import pandas as pd

import kavren

COLUMNS = ("solution", "accepted", "exit_status", "checker_output", "first_code", "findings",
           "ships", "mined_asteroids", "total_resource_mass", "tightest_rule",
           "tightest_margin", "outcome", "error", "seconds")
_COUNTS = ("exit_status", "findings", "ships", "mined_asteroids")

# The estimated work of one solution, to cut a batch into tasks of a useful size: a fixed
# part (the call, the row, reading a small file) and the verification on one core.
_FIXED_SECONDS = 0.003
_BYTES_PER_SECOND = 150e6
_TASK_SECONDS = (0.1, 0.5)  # a task holds this much work, unless workers would idle

Solution = Union[bytes, bytearray, os.PathLike]

# Catalogues this process loaded from files, kept between calls and batches: path ->
# (the file's identity when it was read, the catalogue).
_catalogues: dict = {}
_catalogues_lock = threading.Lock()


def _catalogue_at(path: str) -> "kavren.Catalogue":
    """The catalogue file at `path`, read once per process while the file is unchanged."""
    try:
        status = os.stat(path)
    except OSError:
        return kavren.Catalogue(path)  # raises the module's own reason
    identity = (status.st_ino, status.st_size, status.st_mtime_ns)
    with _catalogues_lock:
        held = _catalogues.get(path)
        if held is None or held[0] != identity:
            held = (identity, kavren.Catalogue(path))
            _catalogues[path] = held
        return held[1]


def _reason(error: BaseException) -> str:
    return str(error) or type(error).__name__


def _tightest(constraints) -> tuple:
    """The passing rule with the least room, its margin as a fraction of its limit (so
    that kilometres, kilograms and newtons compare; the margin itself for a zero limit)."""
    best = (None, math.nan)
    for c in constraints:
        if not c.passed or c.evaluations == 0 or math.isnan(c.margin):
            continue
        room = c.margin / abs(c.limit) if c.limit else c.margin
        if best[0] is None or room < best[1]:
            best = (c.rule, room)
    return best


def _row(label, report, error: Optional[BaseException], seconds: float, reports: bool) -> dict:
    row = dict.fromkeys(COLUMNS)
    row.update(solution=label, accepted=False, seconds=seconds, tightest_margin=math.nan,
               total_resource_mass=math.nan)
    if error is not None:
        row.update(outcome="error", error=_reason(error))
    elif report.outcome != "verified":
        row.update(outcome=report.outcome, error=report.error)
    else:
        summary = report.summary
        rule, room = _tightest(report.constraints)
        row.update(accepted=report.accepted, exit_status=report.exit_status,
                   checker_output=report.checker_output,
                   first_code=report.findings[0].code if report.findings else None,
                   findings=len(report.findings), ships=summary.ships,
                   mined_asteroids=summary.mined_asteroids,
                   total_resource_mass=summary.total_resource_mass, tightest_rule=rule,
                   tightest_margin=room, outcome=report.outcome)
    if reports:
        row["report"] = report.to_dict() if report is not None else None
    return row


def _verify_one(label, solution, catalogue, options: dict, reports: bool) -> dict:
    """One row; whatever goes wrong with this solution (or the catalogue) is its row's
    error, never an exception that would lose the other rows."""
    started = time.perf_counter()
    try:
        if isinstance(catalogue, BaseException):
            raise catalogue
        report = kavren.verify(solution, catalogue, **options)
    except Exception as error:  # noqa: BLE001 - unreadable files, memory: a row each
        return _row(label, None, error, time.perf_counter() - started, reports)
    return _row(label, report, None, time.perf_counter() - started, reports)


def _resolve(catalogue):
    """The catalogue on this process: a Catalogue as it is, a path loaded once; the
    exception when it cannot be read."""
    if isinstance(catalogue, kavren.Catalogue):
        return catalogue
    try:
        return _catalogue_at(catalogue)
    except Exception as error:  # noqa: BLE001
        return error


_allocator_tuned = False


def _tune_allocator() -> None:
    """Dask's nanny starts its workers with MALLOC_TRIM_THRESHOLD_ at 64 KiB, which also
    fixes glibc's threshold for serving an allocation by mmap at 128 KiB: a verification's
    larger buffers then come fresh from the kernel, page by page, and the heap of the
    worker thread's arena shrinks after every verification, to be faulted in again by the
    next one (demo-sized solutions took ten times as long, 100-ship ones 1.5 times).
    glibc's own largest thresholds (32 MiB for mmap, 64 MiB kept at the heap's top) make
    them as fast as in a plain process."""
    global _allocator_tuned
    if _allocator_tuned:
        return
    _allocator_tuned = True
    if "MALLOC_TRIM_THRESHOLD_" in os.environ and "MALLOC_MMAP_THRESHOLD_" not in os.environ:
        try:
            import ctypes

            libc = ctypes.CDLL(None)
            libc.mallopt(-3, 32 << 20)  # M_MMAP_THRESHOLD
            libc.mallopt(-1, 64 << 20)  # M_TRIM_THRESHOLD
        except (OSError, AttributeError):  # not glibc: nothing to tune
            pass


def _verify_chunk(chunk: list, catalogue, options: dict, reports: bool) -> list:
    """A task on a Dask worker: the rows of several solutions, with their positions."""
    _tune_allocator()
    resolved = _resolve(catalogue)
    return [(index, _verify_one(label, solution, resolved, options, reports))
            for index, label, solution in chunk]


def _keep(catalogue):
    """The catalogue as a task's result: computed from the graph, so that the cluster
    can make it again when the workers holding it are lost."""
    return catalogue


def _items(solutions: Iterable[Solution]) -> list:
    items = []
    for index, solution in enumerate(solutions):
        if isinstance(solution, (bytes, bytearray, memoryview)):
            items.append((index, index, bytes(solution)))
        elif isinstance(solution, os.PathLike):
            items.append((index, os.fspath(solution), pathlib.Path(solution)))
        elif isinstance(solution, str):
            raise TypeError("a str is ambiguous here: give a path as os.PathLike (e.g. "
                            f"pathlib.Path) or the text as bytes (solution {index})")
        else:
            raise TypeError("each solution must be a path (os.PathLike) or bytes, not "
                            f"{type(solution).__name__} (solution {index})")
    return items


def _cost(item) -> float:
    solution = item[2]
    if isinstance(solution, bytes):
        size = len(solution)
    else:
        try:
            size = os.stat(solution).st_size  # the client may not see the workers' files
        except OSError:
            size = 0
    return _FIXED_SECONDS + size / _BYTES_PER_SECOND


def _chunks(items: list, workers: int) -> list:
    """Consecutive solutions grouped into tasks of about `target` seconds of work: at
    least 0.1 s unless that would leave fewer than two tasks per worker, at most 0.5 s
    unless one solution takes longer, and four tasks per worker when the batch allows."""
    costs = [_cost(item) for item in items]
    total = sum(costs)
    low, high = _TASK_SECONDS
    target = min(high, max(min(low, total / (2 * workers)), total / (4 * workers)))
    chunks, chunk, work = [], [], 0.0
    for item, cost in zip(items, costs):
        if chunk and work + cost > target:
            chunks.append(chunk)
            chunk, work = [], 0.0
        chunk.append(item)
        work += cost
    if chunk:
        chunks.append(chunk)
    return chunks


def _on_threads(items, catalogue, options, reports, progress) -> list:
    resolved = _resolve(catalogue)
    rows = [None] * len(items)
    with ThreadPoolExecutor(max_workers=os.cpu_count() or 1) as pool:
        futures = [pool.submit(_verify_one, label, solution, resolved, options, reports)
                   for _, label, solution in items]
        for done, future in enumerate(futures, 1):
            rows[done - 1] = future.result()
            if progress:
                sys.stderr.write(f"\rverified {done} of {len(items)}")
                sys.stderr.flush()
    if progress and items:
        sys.stderr.write("\n")
    return rows


def _on_cluster(client, items, catalogue, options, reports, progress) -> list:
    import contextlib

    import distributed

    workers = max(1, sum(client.nthreads().values()))
    batch = uuid.uuid4().hex
    futures = {}
    with warnings.catch_warnings():
        # The catalogue's text and solutions given as bytes belong in the graph, large or
        # not: from there the scheduler runs a lost worker's tasks again.
        warnings.filterwarnings("ignore", "Large object", UserWarning)
        if isinstance(catalogue, kavren.Catalogue):
            # Its text enters the graph once; each worker fetches the catalogue once.
            catalogue = client.submit(_keep, catalogue, key=f"kavren-catalogue-{batch}")
        for number, chunk in enumerate(_chunks(items, workers)):
            future = client.submit(_verify_chunk, chunk, catalogue, options, reports,
                                   key=f"kavren-verify-{batch}-{number}", pure=False)
            futures[future] = chunk
    if progress and futures:
        with contextlib.redirect_stdout(sys.stderr):
            distributed.progress(list(futures), notebook=False)
    rows = [None] * len(items)
    for future in distributed.as_completed(list(futures)):
        chunk = futures.pop(future)
        try:
            results = future.result()
        except Exception as error:  # noqa: BLE001 - the task failed on every try
            failure = RuntimeError(f"the cluster could not verify it: {_reason(error)}")
            results = [(index, _row(label, None, failure, 0.0, reports))
                       for index, label, _ in chunk]
        for index, row in results:
            rows[index] = row
        future.release()
    return rows


def verify_many(solutions: Iterable[Solution], catalogue: Union[str, os.PathLike,
                                                                  "kavren.Catalogue"],
                *, client: Any = None, mode: str = "first", threads: int = 1,
                max_bytes: Optional[int] = None, deadline: Optional[float] = None,
                reports: bool = False, progress: bool = False) -> pd.DataFrame:
    """Verifies every solution and returns one row per solution, in input order.

    solutions: paths (os.PathLike) that the workers can read, or bytes (the text).
    catalogue: a path, which each process loads once and keeps between calls, or a
      Catalogue, whose text goes to the cluster once.
    client: None verifies on local threads; a dask.distributed.Client spreads the
      solutions over its cluster in tasks of several solutions (about 0.1 to 1 s of work
      each). A task lost with its worker runs again elsewhere.
    mode, threads, max_bytes, deadline: as kavren.verify (threads: arc workers of one
      verification).
    reports: add the column "report", each report's to_dict().
    progress: a progress bar on standard error (Dask's with a client).

    Columns: solution (the path, or the position of bytes), accepted, exit_status,
    checker_output, first_code, findings (their count), ships, mined_asteroids,
    total_resource_mass, tightest_rule and tightest_margin (the passing rule with the
    least room, its margin as a fraction of its limit), outcome ("verified",
    "limit_reached", "out_of_memory" or "error" when the solution or the catalogue could
    not be read), error (the reason), seconds (of the verification)."""
    if mode not in ("first", "all"):
        raise ValueError(f'mode must be "first" or "all", not {mode!r}')
    if threads is not None and (not isinstance(threads, int) or threads < 1):
        raise ValueError("threads must be at least 1, or None for all cores")
    if max_bytes is not None and max_bytes < 1:
        raise ValueError("max_bytes must be at least 1, or None for no limit")
    if deadline is not None and not 0 < deadline <= 1e9:
        raise ValueError("deadline must be a positive number of seconds, or None for none")
    if not isinstance(catalogue, (kavren.Catalogue, str, os.PathLike)):
        raise TypeError("catalogue must be a path or a kavren.Catalogue, not "
                        f"{type(catalogue).__name__}")
    if not isinstance(catalogue, kavren.Catalogue):
        catalogue = os.fspath(catalogue)
    options = dict(mode=mode, threads=threads, max_bytes=max_bytes, deadline=deadline)
    items = _items(solutions)
    run = _on_threads if client is None else lambda *a: _on_cluster(client, *a)
    rows = run(items, catalogue, options, reports, progress)
    columns = COLUMNS + (("report",) if reports else ())
    table = pd.DataFrame(rows, columns=list(columns))
    table["accepted"] = table["accepted"].astype(bool)
    for name in _COUNTS:
        table[name] = table[name].astype("Int64")
    for name in ("total_resource_mass", "tightest_margin", "seconds"):
        table[name] = table[name].astype(float)
    return table


if __name__ == "__main__":
    from kavren._batch_cli import main

    sys.exit(main())
