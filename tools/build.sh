#!/usr/bin/env bash
# Builds libkor and runs the example programs.  Installs missing Debian
# packages first (as root, or through sudo).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
bash "$top/tools/ensure_packages.sh" cmake ninja-build g++ gfortran python3 pkg-config \
  coinor-libclp-dev
cmake -S "$top" -B "$top/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKOR_BUILD_EXAMPLES=ON
cmake --build "$top/build"
for example in "$top"/build/examples/*; do
  [ -f "$example" ] && [ -x "$example" ] || continue
  echo "=== $(basename "$example")"
  (cd "$top/build/examples" && "$example")
done
