#!/usr/bin/env python3
"""Checks the #include lines of src/ and include/ against the table of ARCHITECTURE.md:
every edge between folders must be allowed there, and no file may reach itself."""
import os
import re
import sys

root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "..")
allowed = {}
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
        allowed[cells[0]] = {c.strip() for c in cells[1].split(",") if c.strip()} if len(cells) > 1 else set()

include = re.compile(r'^\s*#\s*include\s+"([^"]+)"')
files = {}
for base in ("src", "include"):
    for folder, _, names in os.walk(os.path.join(root, base)):
        for name in names:
            if name.endswith((".h", ".cpp")):
                path = os.path.join(folder, name)
                key = os.path.relpath(path, os.path.join(root, base))
                files[key] = [m.group(1) for m in map(include.match, open(path, encoding="utf-8")) if m]

errors = []
for key, targets in sorted(files.items()):
    here = key.split(os.sep)[0]
    if here not in allowed:
        errors.append(f"{key}: folder '{here}' is not in the table")
        continue
    for target in targets:
        there = target.split("/")[0]
        if there != here and there not in allowed[here]:
            errors.append(f"{key}: includes {target}, but {here} may not include {there}")

# Cycles between files.
state = {}
def visit(key, path):
    state[key] = 1
    for target in files.get(key, []):
        if target not in files:
            continue
        if state.get(target) == 1:
            errors.append("include cycle: " + " -> ".join(path + [target]))
        elif target not in state:
            visit(target, path + [target])
    state[key] = 2
for key in sorted(files):
    if key not in state:
        visit(key, [key])

# Cycles between folders in the table itself.
def reaches(a, b, seen):
    return any(n == b or (n not in seen and reaches(n, b, seen | {n})) for n in allowed.get(a, ()))
for folder in allowed:
    if reaches(folder, folder, {folder}):
        errors.append(f"the table lets {folder} reach itself")

for e in errors:
    print(e)
print(f"{len(files)} files, {sum(map(len, files.values()))} includes, {len(errors)} problems")
sys.exit(1 if errors else 0)
