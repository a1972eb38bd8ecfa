#!/usr/bin/env bash
# Fails when a C++ file differs from what clang-format makes of it with the project's
# .clang-format, or when a line of code or script runs past 100 columns.
# Usage: scripts/check-format.sh [--fix]   (--fix rewrites the C++ files in place)
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t cpp < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = "--fix" ]; then
  clang-format -i "${cpp[@]}"
fi
status=0
if ! clang-format --dry-run --Werror "${cpp[@]}" 2>/tmp/kavren-format.$$; then
  grep -E '^[^ ].*(warning|error):' /tmp/kavren-format.$$ | cut -d: -f1 | sort | uniq -c |
    sed 's/^/clang-format would change: /'
  status=1
fi
rm -f /tmp/kavren-format.$$
mapfile -t text < <(git ls-files '*.cpp' '*.h' '*.py' '*.pyi' '*.sh' '*.cmake' 'CMakeLists.txt' \
  '*/CMakeLists.txt' .ci/run)
if awk 'length > 100 { printf "%s:%d: %d columns\n", FILENAME, FNR, length; bad = 1 }
        END { exit bad }' "${text[@]}"; then :; else status=1; fi
exit $status
