#!/usr/bin/env bash
# Adds what building the Python package needs (nanobind, scikit-build-core,
# from PyPI) to the project's virtual environment .venv/, which
# tools/setup-ipp.sh makes from Debian's interpreter. numpy, scipy,
# matplotlib, dask, tqdm and pytest come from Debian (tools/setup-debian.sh).
# Safe to repeat: asks PyPI only when a version is missing.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
venv="$root/.venv"
"$root/tools/setup-ipp.sh"
wanted=("nanobind==3.1.0" "scikit-build-core==1.1.2")
missing=()
for requirement in "${wanted[@]}"; do
  name="${requirement%%==*}"
  version="${requirement##*==}"
  "$venv/bin/python" -m pip show "$name" 2>/dev/null | grep -q "^Version: $version\$" || missing+=("$requirement")
done
if ((${#missing[@]})); then
  "$venv/bin/python" -m pip install --quiet --disable-pip-version-check "${missing[@]}"
fi
