#!/usr/bin/env bash
# Installs the build tools on a fresh Debian machine when they are missing.
set -euo pipefail
need=()
command -v cmake >/dev/null 2>&1 || need+=(cmake)
command -v g++ >/dev/null 2>&1 || need+=(g++)
command -v make >/dev/null 2>&1 || need+=(make)
[ -f /usr/include/gtest/gtest.h ] || need+=(libgtest-dev)
# The style check of the test script.
command -v clang-format >/dev/null 2>&1 || need+=(clang-format)
# kavren-report: its command line, its JSON, and a browser for the test of its pages.
[ -f /usr/include/CLI/CLI.hpp ] || need+=(libcli11-dev)
[ -f /usr/include/nlohmann/json.hpp ] || need+=(nlohmann-json3-dev)
command -v chromium >/dev/null 2>&1 || need+=(chromium)
# The Python package and its tests, for Debian's /usr/bin/python3.
[ -f /usr/lib/cmake/pybind11/pybind11Config.cmake ] || need+=(pybind11-dev)
/usr/bin/python3 -c 'import sysconfig, os, sys
sys.exit(not os.path.exists(os.path.join(sysconfig.get_paths()["include"], "Python.h")))' \
  >/dev/null 2>&1 || need+=(python3-dev)
/usr/bin/python3 -c 'import numpy' >/dev/null 2>&1 || need+=(python3-numpy)
/usr/bin/python3 -c 'import pytest' >/dev/null 2>&1 || need+=(python3-pytest)
# kavren.batch: its tables and the Dask cluster it spreads a population over.
/usr/bin/python3 -c 'import pandas' >/dev/null 2>&1 || need+=(python3-pandas)
/usr/bin/python3 -c 'import distributed' >/dev/null 2>&1 || need+=(python3-distributed)
if [ ${#need[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends "${need[@]}"
fi
