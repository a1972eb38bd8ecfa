"""Verification of low-thrust asteroid-mining solutions in memory.

    import kavren
    catalogue = kavren.Catalogue("KAVREN_Asteroids_Data.txt")
    report = kavren.verify(pathlib.Path("Result.txt"), catalogue, mode="all")
    for finding in report.findings:
        print(finding.code, finding.margin, finding.unit)

Load the catalogue once and reuse it; verify() releases the interpreter lock, so a
ThreadPoolExecutor verifies several candidates at once.
"""

import os
from typing import Any, Literal, Optional, Union

import numpy as np
import numpy.typing as npt

__version__: str

class Catalogue:
    """The asteroid catalogue: loaded once, immutable, shared by every verification."""

    def __init__(self, path: Union[str, os.PathLike[str]]) -> None:
        """Reads the catalogue file. Raises FileNotFoundError when it does not exist and
        OSError when it cannot be read."""
    @staticmethod
    def from_text(text: Union[str, bytes]) -> Catalogue:
        """The catalogue from its text: a header line, then the records. Never fails: rows
        a short or malformed text does not reach stay at zero."""

class Finding:
    """One violated rule, with its margin."""

    @property
    def code(self) -> str:
        """The message code, e.g. "Error704"."""
    @property
    def message(self) -> str:
        """The exact text kavren-check prints for it, newline included."""
    @property
    def lines(self) -> list[int]:
        """1-based lines of the solution file it concerns."""
    @property
    def ship(self) -> int:
        """1-based ordinal of the ship, 0 when none."""
    @property
    def quantity(self) -> str:
        """What was compared, e.g. "position error to the asteroid"."""
    @property
    def value(self) -> float:
        """The value met (nan when none)."""
    @property
    def limit(self) -> float:
        """The limit it was held to (nan when none)."""
    @property
    def margin(self) -> float:
        """Signed distance to the limit in `unit`; negative means violated."""
    @property
    def unit(self) -> str:
        """Unit of value, limit and margin."""
    @property
    def first(self) -> bool:
        """True for the finding kavren-check prints."""
    @property
    def exit_status(self) -> int:
        """kavren-check's exit status when this finding is the first."""

class Constraint:
    """One rule the solution was checked against, over all its evaluations."""

    @property
    def rule(self) -> str:
        """Stable identifier, e.g. "rendezvous.position"."""
    @property
    def code(self) -> str:
        """The message code of a violation."""
    @property
    def quantity(self) -> str:
        """What is compared."""
    @property
    def unit(self) -> str:
        """Unit of worst, limit and margin."""
    @property
    def relation(self) -> Literal["<=", ">=", "<", ">"]:
        """`value relation limit` must hold."""
    @property
    def evaluations(self) -> int:
        """How often it was evaluated."""
    @property
    def violations(self) -> int:
        """How often it was violated."""
    @property
    def worst(self) -> float:
        """The value with the smallest margin (nan when never evaluated)."""
    @property
    def limit(self) -> float:
        """The limit at that evaluation."""
    @property
    def margin(self) -> float:
        """Its margin; negative means violated."""
    @property
    def line(self) -> int:
        """1-based line where the worst value was met, 0 when none."""
    @property
    def ship(self) -> int:
        """1-based ship of the worst value, 0 when none."""
    @property
    def passed(self) -> bool:
        """True when no evaluation violated it."""

class Warning:
    """Something that passes only by accident of the rules."""

    @property
    def kind(self) -> str:
        """"nan-passes", "zero-length-thrust-step", "evaluation-budget", "near-limit" or
        "step-spans-thrust-points"."""
    @property
    def message(self) -> str:
        """One sentence for people."""
    @property
    def lines(self) -> list[int]:
        """1-based lines it concerns."""
    @property
    def ship(self) -> int:
        """1-based ship, 0 when none."""
    @property
    def rule(self) -> str:
        """The constraint concerned, when there is one."""

class EventMark:
    """An event of a ship as the file states it."""

    @property
    def kind(self) -> Literal["launch", "flyby", "rendezvous", "drop"]:
        """The kind of event; "drop" is an Earth flyby slow enough to drop resources (at most
        6.001 km/s), which closes a group of the ship's ledger whatever its mass change."""
    @property
    def body_id(self) -> int:
        """The body's identifier."""
    @property
    def line(self) -> int:
        """1-based line of the event's first line."""
    @property
    def epoch(self) -> float:
        """Epoch, MJD."""
    @property
    def r(self) -> tuple[float, float, float]:
        """Position (x, y, z), km."""
    @property
    def mass(self) -> float:
        """Mass, kg."""

class ShipSummary:
    """One ship's figures."""

    @property
    def ship(self) -> int:
        """1-based ordinal."""
    @property
    def launch_epoch(self) -> float:
        """Launch epoch, MJD."""
    @property
    def final_mass(self) -> float:
        """Final mass, kg."""
    @property
    def miners(self) -> int:
        """Miners left on asteroids."""
    @property
    def resources(self) -> float:
        """Resources collected at rendezvous, kg."""
    @property
    def last_drop_epoch(self) -> float:
        """Epoch of the last Earth drop, MJD; nan without one."""
    @property
    def thrust_phases(self) -> int:
        """Thrust phases flown."""
    @property
    def events(self) -> list[EventMark]:
        """The ship's events, in file order."""

class Summary:
    """The solution's figures."""

    @property
    def ships(self) -> int:
        """Number of mining ships."""
    @property
    def mined_asteroids(self) -> int:
        """Number of mined asteroids."""
    @property
    def total_resource_mass(self) -> float:
        """Total resource mass, kg."""
    @property
    def per_ship(self) -> list[ShipSummary]:
        """One ShipSummary per ship."""

class Statistics:
    """Work done (not part of the verdict: depends on the options)."""

    @property
    def derivative_evaluations(self) -> int:
        """Derivative evaluations of the integrations."""
    @property
    def arcs(self) -> int:
        """Burning arcs integrated."""
    @property
    def lines(self) -> int:
        """Lines of the solution read."""
    @property
    def ships_verified(self) -> int:
        """Ships read and verified by this call."""
    @property
    def ships_cached(self) -> int:
        """Ships a Session took from what it verified before."""


class Report:
    """What one verification of a solution finds."""

    @property
    def outcome(self) -> Literal["verified", "limit_reached", "out_of_memory"]:
        """How the verification ended."""
    @property
    def error(self) -> str:
        """The reason when the outcome is not "verified"."""
    @property
    def checker_output(self) -> str:
        """The text kavren-check prints."""
    @property
    def exit_status(self) -> int:
        """kavren-check's exit status."""
    @property
    def score_file(self) -> Optional[str]:
        """The text of ScoreData.txt when the check writes it, else None."""
    @property
    def accepted(self) -> bool:
        """True when there is no finding ("Check successfully!")."""
    @property
    def findings(self) -> list[Finding]:
        """Every violated rule in the order the checks meet it (only the first in mode
        "first")."""
    @property
    def constraints(self) -> list[Constraint]:
        """One row per rule, in the order of the checks."""
    @property
    def warnings(self) -> list[Warning]:
        """Things that pass only by accident."""
    @property
    def summary(self) -> Summary:
        """The solution's figures."""
    @property
    def trajectories(self) -> list[npt.NDArray[np.float64]]:
        """One read-only array per ship when verify() was asked for trajectories (else an
        empty list), shape (n, 9): epoch [MJD], x, y, z [km], vx, vy, vz [km/s], mass [kg],
        thrust magnitude [N]."""
    @property
    def statistics(self) -> Statistics:
        """Work done."""
    def to_dict(self) -> dict[str, Any]:
        """The report as the JSON object kavren-report writes (statistics and trajectories
        left out; numbers that are not finite are None)."""

def verify(
    solution: Union[str, bytes, bytearray, os.PathLike[str]],
    catalogue: Catalogue,
    mode: Literal["first", "all"] = "first",
    threads: Optional[int] = None,
    trajectories: bool = False,
    max_bytes: Optional[int] = None,
    deadline: Optional[float] = None,
) -> Report:
    """Verifies one solution and returns its Report.

    solution: the text of a Result.txt file (str or bytes), or the path of one
      (os.PathLike, e.g. pathlib.Path).
    mode: "first" stops at the first violation, as kavren-check does; "all" reports every
      violation of every event, arc and ship.
    threads: workers integrating the arcs; None uses one per core. The report does not
      depend on it.
    trajectories: keep the states along every arc (Report.trajectories).
    max_bytes, deadline: limits for solutions from untrusted sources (None: none). A
      solution of more than max_bytes bytes, or a verification still running after
      deadline seconds, returns a Report whose outcome is "limit_reached", with the
      reason in Report.error and no verdict.

    Raises MemoryError (with the reason) when memory cannot be had, and OSError when a
    path cannot be read. The interpreter lock is released while it runs."""

class ArcPolish:
    """One arc whose end state failed (Error201, Error202, Error203)."""

    @property
    def ship(self) -> int:
        """1-based ordinal of the ship."""
    @property
    def first_line(self) -> int:
        """The arc's first line, 1-based; 0 when it has none."""
    @property
    def last_line(self) -> int:
        """The arc's last line, 1-based; 0 when it has none."""
    @property
    def end_line(self) -> int:
        """The line of the end state, the findings' line."""
    @property
    def codes(self) -> list[str]:
        """What was found there: "Error201" ..."""
    @property
    def polished(self) -> bool:
        """True when its thrust was changed and the polished file verified."""
    @property
    def reason(self) -> str:
        """Why not, when not polished."""
    @property
    def before(self) -> tuple[float, float, float]:
        """End-state errors before: position km, velocity km/s, mass kg."""
    @property
    def after(self) -> tuple[float, float, float]:
        """End-state errors after (as before when not polished)."""
    @property
    def max_turn_degrees(self) -> float:
        """Largest change of direction of a thrust line."""
    @property
    def max_magnitude_change(self) -> float:
        """Largest change of a thrust magnitude, N."""
    @property
    def changed_lines(self) -> int:
        """Thrust lines changed."""
    @property
    def iterations(self) -> int:
        """Newton iterations."""
    @property
    def integrations(self) -> int:
        """Integrations of the arc."""

class LeftFinding:
    """A finding polishing leaves as it is, and why."""

    @property
    def code(self) -> str:
        """The message code."""
    @property
    def lines(self) -> list[int]:
        """1-based lines it concerns."""
    @property
    def ship(self) -> int:
        """1-based ordinal of the ship, 0 when none."""
    @property
    def reason(self) -> str:
        """Why polishing leaves it."""

class PolishResult:
    """A polished solution."""

    @property
    def text(self) -> str:
        """The polished solution's text."""
    @property
    def arcs(self) -> list[ArcPolish]:
        """One entry per failing arc, in file order."""
    @property
    def left(self) -> list[LeftFinding]:
        """The other findings, left as they are."""
    @property
    def report(self) -> Report:
        """The polished text verified, every finding (mode "all")."""

def polish(
    solution: Union[str, bytes, bytearray, os.PathLike[str]],
    catalogue: Catalogue,
    safety: float = 0.5,
    max_degrees: float = 10.0,
    threads: Optional[int] = None,
) -> PolishResult:
    """Changes the thrust numbers of every burning arc whose end state misses so that the
    verifier's integration lands on it; only those numbers change.

    safety: the polished arcs' end-state errors stay within this fraction of each limit.
    max_degrees: the largest turn of a thrust line.
    threads: workers (None: one per core); the result does not depend on it.
    """
    ...

class Session:
    """Verifies candidates that differ from earlier ones in a few ships: keeps, per ship,
    what verifying it produced, and verifies only the ships not seen in any earlier
    candidate. Reports equal verify()'s except in statistics."""

    def __init__(self, catalogue: Catalogue, cache_bytes: int = 268435456) -> None: ...
    def verify(
        self,
        solution: Union[str, bytes, bytearray, os.PathLike[str]],
        mode: Literal["first", "all"] = "first",
        threads: Optional[int] = None,
        trajectories: bool = False,
        max_bytes: Optional[int] = None,
        deadline: Optional[float] = None,
    ) -> Report:
        """As kavren.verify(solution, catalogue, ...). Calls from several threads take turns."""
    @property
    def cached_ships(self) -> int:
        """Ships kept."""
    @property
    def cache_bytes(self) -> int:
        """Their estimated size in bytes."""
    def clear(self) -> None:
        """Forgets every ship."""
