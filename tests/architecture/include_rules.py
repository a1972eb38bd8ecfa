#!/usr/bin/env python3
"""Checks the project's #include lines against the table of ARCHITECTURE.md.

Every folder of src/, include/ and tools/, and python/, bench/ and fuzz/ is a row of the
table: an include of another folder's header must be allowed there, and no file may reach
itself through includes. Outside the folders and files the table lets print (the "prints"
column), no file writes to the standard streams."""
import os
import re
import sys

root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "..")

allowed, prints = {}, set()
in_table = False
for line in open(os.path.join(root, "ARCHITECTURE.md"), encoding="utf-8"):
    if line.startswith("| folder | may include |"):
        in_table = True
        continue
    if in_table:
        if not line.startswith("|"):
            break
        cells = [c.strip() for c in line.strip().strip("|").split("|")]
        if cells[0].startswith("---"):
            continue
        allowed[cells[0]] = {c.strip() for c in cells[1].split(",") if c.strip()}
        # "yes": every file of the folder may print; otherwise the files named, if any.
        for cell in (cells[2].split(",") if len(cells) > 2 else []):
            name = cell.strip().strip("`")
            if name:
                prints.add(cells[0] if name == "yes" else cells[0] + "/" + name)

# Each scanned folder: (its name in the table, its path, the prefix its includes carry).
# Headers of src/, include/ and tools/ are included as "folder/file.h"; a file of python/,
# bench/ or fuzz/ includes its own folder's headers by their bare names.
# A folder of tools/ is named "tools/<name>" in the table; its headers are included as
# "<name>/file.h", like those of src/ (no two folders have headers under one name).
folders = []
for base in ("src", "include", "tools"):
    for name in sorted(os.listdir(os.path.join(root, base))):
        if os.path.isdir(os.path.join(root, base, name)):
            folders.append((name if base != "tools" else "tools/" + name,
                            os.path.join(root, base, name)))
for name in ("python", "bench", "fuzz"):
    folders.append((name, os.path.join(root, name)))
header_names = {}  # include prefix -> table name
for name, path in folders:
    if any(f.endswith(".h") for _, _, fs in os.walk(path) for f in fs):
        header_names[os.path.basename(path)] = name

include = re.compile(r'^\s*#\s*include\s+"([^"]+)"')
# Writing to the standard streams: std::cout, std::cerr, std::clog, printf, puts, stdout...
printing = re.compile(r"\bstd::(cout|cerr|clog)\b|(?<![\w:])(printf|puts|putchar)\s*\("
                      r"|\b(stdout|stderr)\b")
files = {}  # "folder/file" -> (folder, [included keys])
errors = []
for name, path in folders:
    for here, _, names in os.walk(path):
        if os.path.relpath(here, path).startswith("tests"):
            continue  # python/tests: the module's tests, not its code
        for file_name in names:
            if not file_name.endswith((".h", ".cpp")):
                continue
            full = os.path.join(here, file_name)
            key = os.path.basename(path) + "/" + os.path.relpath(full, path)
            text = open(full, encoding="utf-8").read()
            targets = [m.group(1) for m in map(include.match, text.splitlines()) if m]
            targets = [t if "/" in t else os.path.basename(path) + "/" + t for t in targets]
            files[key] = (name, targets)
            if name not in prints and key not in prints:
                code = re.sub(r"//[^\n]*|\"(\\.|[^\"\\])*\"", "", text)
                if printing.search(code):
                    errors.append(f"{key}: writes to a standard stream, but {name} may not print")

for key, (here, targets) in sorted(files.items()):
    if here not in allowed:
        errors.append(f"{key}: folder '{here}' is not in the table")
        continue
    for target in targets:
        there = header_names.get(target.split("/")[0], target.split("/")[0])
        if there != here and there not in allowed[here]:
            errors.append(f"{key}: includes {target}, but {here} may not include {there}")

def report_cycles(graph, what):
    """Appends every cycle a depth-first walk of `graph` (node -> successors) meets."""
    state = {}

    def visit(node, path):
        state[node] = 1
        for nxt in sorted(graph.get(node, ())):
            if state.get(nxt) == 1:
                errors.append(what + ": " + " -> ".join(path[path.index(nxt):] + [nxt]))
            elif nxt not in state:
                visit(nxt, path + [nxt])
        state[node] = 2

    for node in sorted(graph):
        if node not in state:
            visit(node, [node])


def unit(key):
    return key.rsplit(".", 1)[0]


# Cycles between files, and between units, a header and its source file taken as one:
# a.cpp including b.h while b.cpp includes a.h makes the two one unit in fact, whatever
# the headers include.
report_cycles({k: [t for t in ts if t in files] for k, (_, ts) in files.items()}, "include cycle")
units = {}
for key, (_, targets) in files.items():
    for target in targets:
        if target in files and unit(target) != unit(key):
            units.setdefault(unit(key), set()).add(unit(target))
report_cycles(units, "cycle between files")


# Cycles between folders in the table itself.
def reaches(a, b, seen):
    return any(n == b or (n not in seen and reaches(n, b, seen | {n})) for n in allowed.get(a, ()))


for folder in allowed:
    if reaches(folder, folder, {folder}):
        errors.append(f"the table lets {folder} reach itself")

for e in errors:
    print(e)
count = sum(len(t) for _, t in files.values())
print(f"{len(files)} files, {count} includes, {len(errors)} problems")
sys.exit(1 if errors else 0)
