"""Verification of low-thrust asteroid-mining solutions in memory.

    import kavren
    catalogue = kavren.Catalogue("KAVREN_Asteroids_Data.txt")
    report = kavren.verify(pathlib.Path("Result.txt"), catalogue, mode="all")
    for finding in report.findings:
        print(finding.code, finding.margin, finding.unit)

Load the catalogue once and reuse it; verify() releases the interpreter lock, so a
ThreadPoolExecutor verifies several candidates at once. kavren.batch verifies whole
populations, on local threads or on a Dask cluster.
"""

# Every public name of the compiled extension is the package's own.
from kavren._kavren import *  # noqa: F401,F403
from kavren._kavren import __version__  # noqa: F401

