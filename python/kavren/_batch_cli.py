"""python3 -m kavren.batch: verifies solution files on local threads, on local Dask worker
processes or on a Dask cluster, and prints or writes one row per file.

Exit status: 0 when every solution is accepted, 1 when one is not, 2 for a usage error or
a solution or catalogue that could not be read or verified to the end.
"""

import argparse
import os
import pathlib
import sys

# Columns printed on the terminal; --csv and --json write every column.
_SHOWN = ["solution", "accepted", "exit_status", "first_code", "findings", "ships",
          "mined_asteroids", "total_resource_mass", "tightest_rule", "tightest_margin",
          "outcome", "error", "seconds"]


class _Parser(argparse.ArgumentParser):
    def error(self, message):
        self.print_usage(sys.stderr)
        self.exit(2, f"{self.prog}: {message}\n")


def _parser() -> argparse.ArgumentParser:
    parser = _Parser(prog="python3 -m kavren.batch", description=__doc__.split("\n\n")[0])
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--scheduler", metavar="ADDRESS",
                       help="a Dask scheduler, e.g. tcp://host:8786 (the workers read the "
                            "files at the same paths)")
    where.add_argument("--local-workers", type=int, metavar="N",
                       help="start N Dask worker processes on this machine")
    parser.add_argument("--catalogue", default="KAVREN_Asteroids_Data.txt", metavar="PATH",
                        help="the catalogue (default: %(default)s)")
    parser.add_argument("--mode", choices=("first", "all"), default="first",
                        help="first: stop at the first violation as kavren-check does; all: "
                             "every violation (default: %(default)s)")
    parser.add_argument("files", nargs="+", metavar="FILE", help="solution files")
    out = parser.add_mutually_exclusive_group()
    out.add_argument("--csv", metavar="OUT", help="write the table as CSV (-: standard output)")
    out.add_argument("--json", metavar="OUT",
                     help="write the table as a JSON array of rows (-: standard output)")
    return parser


def _client(args):
    if args.scheduler is None and args.local_workers is None:
        return None, None
    import distributed

    if args.scheduler is not None:
        return distributed.Client(args.scheduler), None
    if args.local_workers < 1:
        raise ValueError("--local-workers must be at least 1")
    cluster = distributed.LocalCluster(n_workers=args.local_workers, threads_per_worker=1,
                                       processes=True, host="127.0.0.1",
                                       dashboard_address=None)
    return distributed.Client(cluster), cluster


def _write(table, target, form) -> None:
    if form == "csv":
        text = table.to_csv(index=False)
    else:
        text = table.to_json(orient="records", indent=1) + "\n"
    if target == "-":
        sys.stdout.write(text)
    else:
        pathlib.Path(target).write_text(text)


def main(argv=None) -> int:
    args = _parser().parse_args(argv)
    from kavren.batch import verify_many

    # Absolute paths: a worker's working folder is not ours.
    files = [pathlib.Path(os.path.abspath(f)) for f in args.files]
    catalogue = os.path.abspath(args.catalogue)
    try:
        client, cluster = _client(args)
    except (OSError, ValueError) as error:
        print(f"python3 -m kavren.batch: {error}", file=sys.stderr)
        return 2
    try:
        table = verify_many(files, catalogue, client=client, mode=args.mode,
                            progress=sys.stderr.isatty())
    finally:
        if client is not None:
            client.close()
        if cluster is not None:
            cluster.close()
    table["solution"] = args.files  # as they were named
    try:
        if args.csv:
            _write(table, args.csv, "csv")
        elif args.json:
            _write(table, args.json, "json")
        else:
            with __import__("pandas").option_context("display.max_rows", None,
                                                     "display.width", 200):
                print(table[_SHOWN].to_string(index=False))
    except OSError as error:
        print(f"python3 -m kavren.batch: cannot write the table: {error}", file=sys.stderr)
        return 2
    for _, row in table[table.outcome != "verified"].iterrows():
        print(f"python3 -m kavren.batch: cannot verify {row.solution}: {row.error}",
              file=sys.stderr)
    if (table.outcome != "verified").any():
        return 2
    return 0 if table.accepted.all() else 1
