#!/usr/bin/env bash
# Loads kavren-report pages in headless Chromium and checks what a person would see: the
# plots and the findings are in the page, its script ran without an error. Screenshots are
# kept in the artefact folder.
#   browser_test.sh KAVREN_REPORT KAVREN_SYNTH TEST_REPORT ARTEFACT_FOLDER
# The page test_report writes (the demo with three faults, verified in mode all) and the
# page of the valid demo.
set -euo pipefail
report_bin=$1 synth_bin=$2 test_bin=$3 out=$4
mkdir -p "$out"
browser=$(command -v chromium || command -v chromium-browser || true)
if [ -z "$browser" ]; then
  echo "Chromium is missing: scripts/install-deps.sh installs it" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One headless load: the DOM after the page's script ran, and a screenshot.
load() {  # page name
  local page=$1 name=$2
  timeout 120 "$browser" --headless --no-sandbox --disable-gpu --hide-scrollbars \
    --user-data-dir="$work/profile" --enable-logging=stderr --v=0 \
    --dump-dom "file://$page" >"$work/$name.dom" 2>"$work/$name.log" || {
    cat "$work/$name.log" >&2
    echo "$name: Chromium failed" >&2
    return 1
  }
  timeout 120 "$browser" --headless --no-sandbox --disable-gpu --hide-scrollbars \
    --user-data-dir="$work/profile" --window-size=1280,2200 \
    --screenshot="$out/$name.png" "file://$page" >/dev/null 2>&1 || true
}

failures=0
check() {  # name description grep-pattern minimum-count
  local name=$1 what=$2 pattern=$3 least=$4 n
  n=$( (grep -o -- "$pattern" "$work/$name.dom" || true) | wc -l)
  if [ "$n" -lt "$least" ]; then
    echo "FAIL $name: $what (found $n, expected at least $least)" >&2
    failures=$((failures + 1))
  else
    echo "ok   $name: $what ($n)"
  fi
}
check_page() {  # name findings-at-least
  local name=$1 findings=$2
  check "$name" "the page's script ran" 'data-ready="yes"' 1
  if grep -q '<body[^>]*data-script-error' "$work/$name.dom" ||
     grep -q 'Uncaught' "$work/$name.log"; then
    echo "FAIL $name: a script error occurred" >&2
    grep -o '<body[^>]*data-script-error="[^"]*"' "$work/$name.dom" >&2 || true
    grep 'Uncaught' "$work/$name.log" >&2 || true
    failures=$((failures + 1))
  fi
  check "$name" "orbit plot" '<svg class="orbits"' 1
  check "$name" "ship tracks" '<path class="track' 1
  check "$name" "planet orbits" '<path class="planet"' 3
  check "$name" "timeline" '<svg class="timeline"' 1
  check "$name" "thrust, mass and distance plots" '<svg class="ship-plot"' 1
  check "$name" "constraint table" '<table class="constraints"' 1
  check "$name" "findings" '<tr class="finding' "$findings"
}

"$test_bin" --gtest_filter=RenderHtml.HundredShipPageStaysSmall >/dev/null
load "$out/fixture-report.html" fixture
check_page fixture 2
check fixture "violated places ringed" 'class="violated"' 2
check fixture "the thrust fault" 'Error401' 1

# The valid demo.
"$synth_bin" demo "$work/demo" >/dev/null
(cd "$work/demo" && "$report_bin" --html "$out/demo-report.html" >"$work/demo.txt")
load "$out/demo-report.html" demo
check_page demo 0
check demo "accepted" 'class="badge ok"' 1

[ "$failures" -eq 0 ]
