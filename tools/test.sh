#!/usr/bin/env bash
# Builds and runs every test: once in a release build (with the benchmarks
# compiled, and the install checked from a scratch prefix), once under
# AddressSanitizer and UndefinedBehaviorSanitizer.  Installs missing Debian
# packages first (as root, or through sudo).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
bash "$top/tools/ensure_packages.sh" cmake ninja-build g++ gfortran python3 pkg-config binutils \
  coinor-libclp-dev \
  googletest libgtest-dev libbenchmark-dev libgsl-dev libboost-dev python3-mpmath
jobs=$(nproc)

cmake -S "$top" -B "$top/build-test" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DKOR_BUILD_TESTS=ON -DKOR_BUILD_EXAMPLES=ON -DKOR_BUILD_BENCH=ON
cmake --build "$top/build-test"
(cd "$top/build-test" && ctest --output-on-failure -j "$jobs")

cmake -S "$top" -B "$top/build-sanitize" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DKOR_BUILD_TESTS=ON -DKOR_BUILD_EXAMPLES=OFF -DKOR_SANITIZE=ON
cmake --build "$top/build-sanitize"
(cd "$top/build-sanitize" && ASAN_OPTIONS=detect_leaks=1 ctest --output-on-failure -j "$jobs")
