#!/usr/bin/env bash
# Installs what building and testing libzolvex-m needs on Debian 12, from
# Debian's packages. Safe to repeat: when everything is present it changes
# nothing and asks no registry.
set -euo pipefail

packages=(
  build-essential cmake pkg-config binutils
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  libeigen3-dev libfftw3-dev libfftw3-double3 libfftw3-single3
  python3 python3-venv python3-numpy python3-scipy
  clang-14 libclang-rt-14-dev
  python3-matplotlib python3-dask python3-distributed python3-mpmath python3-tqdm python3-pytest
  libsleef-dev
  doxygen abigail-tools
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  # Wait for another package manager run rather than fail.
  apt-get -o DPkg::Lock::Timeout=600 update -qq
  apt-get -o DPkg::Lock::Timeout=600 install -y -qq --no-install-recommends "${missing[@]}"
fi
