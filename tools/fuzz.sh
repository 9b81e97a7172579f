#!/usr/bin/env bash
# Builds the libFuzzer targets of tests/fuzz with clang and runs each for a
# bounded time on a scratch copy of its seed corpus
# (tests/data/<chapter>/corpus/<name without _fuzz>).  Inputs that crash are left
# in the build directory's fuzz/ folder as crash-*; add them to the corpus
# once fixed, so that the regular tests replay them.
#   tools/fuzz.sh [SECONDS_PER_TARGET (default 60)] [BUILD_DIR (default build-fuzz)]
set -euo pipefail
seconds=${1:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
build=${2:-$root/build-fuzz}
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DKOR_FUZZ=ON \
  -DKOR_BUILD_TESTS=OFF -DKOR_BUILD_EXAMPLES=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
targets=()
for source in "$root"/tests/fuzz/*_fuzz.cpp; do
  targets+=("$(basename "$source" .cpp)")
done
cmake --build "$build" --target "${targets[@]}"
status=0
for target in "${targets[@]}"; do
  name=${target%_fuzz}
  seeds=$(find "$root/tests/data" -type d -path "*/corpus/$name" | head -n 1)
  work=$(mktemp -d)
  [ -n "$seeds" ] && cp -r "$seeds"/. "$work"/
  echo "== $target for ${seconds}s (seeds: ${seeds:-none})"
  if ! (cd "$build/fuzz" && ./"$target" -max_total_time="$seconds" -max_len=65536 \
        -print_final_stats=1 "$work"); then
    status=1
  fi
  rm -rf "$work"
done
exit $status
