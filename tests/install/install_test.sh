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
for program in kavren-check kavren-polish kavren-synth; do
  [ -x "$prefix/bin/$program" ] || { echo "missing $prefix/bin/$program"; exit 1; }
done
for header in verify.h report.h polish.h; do
  [ -f "$prefix/include/kavren/$header" ] || { echo "missing the public header $header"; exit 1; }
done
if [ -n "$(find "$prefix/include" -name '*.h' ! -path '*/include/kavren/*')" ]; then
  echo "headers outside include/kavren"; exit 1
fi

# One version everywhere: the CMake package's, the Debian package's, the programs'.
version=$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")$/\1/p' \
  "$prefix"/lib*/cmake/kavren/kavrenConfigVersion.cmake)
deb_version=$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' "$build/CPackConfig.cmake")
report_version=$("$prefix/bin/kavren-report" --version)
if [ -z "$version" ] || [ "$deb_version" != "$version" ] || \
   [ "$report_version" != "kavren-report $version" ]; then
  echo "versions differ: CMake package '$version', Debian package '$deb_version'," \
    "'$report_version'"; exit 1
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
assert kavren.__version__ == sys.argv[2], kavren.__version__
table = kavren.batch.verify_many([pathlib.Path("Result.txt")], "KAVREN_Asteroids_Data.txt")
assert list(table.checker_output) == [report.checker_output], table
' "$site" "$version")
  (cd "$work/demo" && PYTHONPATH=$site "$KAVREN_PYTHON" -m kavren.batch Result.txt >/dev/null) ||
    { echo "python3 -m kavren.batch failed on the demo"; exit 1; }
fi
echo "installed, consumer built and run, module imported from $prefix"
