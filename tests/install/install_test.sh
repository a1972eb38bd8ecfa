#!/usr/bin/env bash
# Installs the build into a temporary prefix, builds a C++ consumer of the installed CMake
# package, runs it on the demo, and imports the Python package from the prefix.
#   install_test.sh <build folder> <C++ compiler>
# Environment: KAVREN_PYTHON (interpreter), KAVREN_PYTHON_DIR (module folder relative to
# the prefix; empty when the module is not built).
set -euo pipefail
build=$(cd "$1" && pwd)
compiler=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
for program in kavren-check kavren-synth; do
  [ -x "$prefix/bin/$program" ] || { echo "missing $prefix/bin/$program"; exit 1; }
done
[ -f "$prefix/include/kavren/verify.h" ] || { echo "missing the public headers"; exit 1; }
if [ -n "$(find "$prefix/include" -name '*.h' ! -path '*/include/kavren/*')" ]; then
  echo "headers outside include/kavren"; exit 1
fi

"$prefix/bin/kavren-synth" demo "$work/demo" >/dev/null
expected=$(cat "$work/demo/expected_stdout.txt")

# The C++ consumer, built against the prefix only.
cmake -S "$here" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build "$work/consumer" >/dev/null
out=$("$work/consumer/consumer" "$work/demo/KAVREN_Asteroids_Data.txt" "$work/demo/Result.txt")
if [ "$out" != "1 5"$'\n'"$expected" ]; then
  echo "consumer printed:"; echo "$out"; exit 1
fi

# The Python package from the prefix, with the interpreter it was built for: the
# extension, its stubs, and kavren.batch on local threads and from the command line.
if [ -n "${KAVREN_PYTHON_DIR:-}" ]; then
  site=$prefix/$KAVREN_PYTHON_DIR
  for file in __init__.py __init__.pyi py.typed batch.py; do
    [ -f "$site/kavren/$file" ] || { echo "missing $site/kavren/$file"; exit 1; }
  done
  (cd "$work/demo" && PYTHONPATH=$site "$KAVREN_PYTHON" -c '
import pathlib, sys, kavren, kavren.batch
assert pathlib.Path(kavren.__file__).parent == pathlib.Path(sys.argv[1]) / "kavren", kavren.__file__
report = kavren.verify(pathlib.Path("Result.txt"), kavren.Catalogue("KAVREN_Asteroids_Data.txt"))
assert report.accepted and report.checker_output == open("expected_stdout.txt").read(), report
table = kavren.batch.verify_many([pathlib.Path("Result.txt")], "KAVREN_Asteroids_Data.txt")
assert list(table.checker_output) == [report.checker_output], table
' "$site")
  (cd "$work/demo" && PYTHONPATH=$site "$KAVREN_PYTHON" -m kavren.batch Result.txt >/dev/null) ||
    { echo "python3 -m kavren.batch failed on the demo"; exit 1; }
fi
echo "installed, consumer built and run, module imported from $prefix"
