#!/usr/bin/env bash
# Installs Intel IPP's runtime from PyPI (package `ipp`) into the project's
# own virtual environment .venv/ (never system-wide); the tests load it from
# .venv/lib. Safe to repeat. tools/setup-python.sh adds the Python package's
# build tools to the same environment.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
venv="$root/.venv"
version="2026.1.0"

# The project's one virtual environment, made from Debian's interpreter so
# that it sees Debian's numpy, scipy, matplotlib and dask; one made from
# another interpreter is made anew.
if ! grep -qs "^include-system-site-packages = true" "$venv/pyvenv.cfg" ||
   ! grep -qs "^home = /usr/bin" "$venv/pyvenv.cfg"; then
  rm -rf "$venv"
  /usr/bin/python3 -m venv --system-site-packages "$venv"
fi
if ! "$venv/bin/python" -m pip show ipp 2>/dev/null | grep -q "^Version: $version\$"; then
  "$venv/bin/python" -m pip install --quiet --disable-pip-version-check "ipp==$version"
fi
# The wheel names its per-processor libraries by their short version
# (libippsk0.so.12) while its dispatchers look for the full one
# (libippsk0.so.12.1) and end the process when none is found: add the names
# the dispatchers ask for.
"$venv/bin/python" "$root/tools/ipp_link_dispatch_names.py" "$venv/lib"
