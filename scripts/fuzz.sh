#!/usr/bin/env bash
# scripts/fuzz.sh NAME SECONDS
# Builds the libFuzzer target fuzz/NAME.cpp with clang into build-fuzz and
# runs it for SECONDS from the seeds in fuzz/corpus/NAME. Inputs it finds
# collect in build-fuzz/corpus/NAME, crashing inputs in build-fuzz/crashes/NAME;
# turn each crash into a regression test.
set -euo pipefail
usage="usage: scripts/fuzz.sh NAME SECONDS"
name=${1:?$usage}
seconds=${2:?$usage}
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-fuzz"
[ -f "$root/fuzz/$name.cpp" ] || { echo "no fuzz target fuzz/$name.cpp" >&2; exit 2; }
if ! command -v clang++ >/dev/null; then
  SUDO=""
  [ "$(id -u)" = 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq clang >/dev/null
fi
cmake -S "$root" -B "$build" -DMORVANE_FUZZ=ON -DMORVANE_TESTS=OFF -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_BUILD_TYPE=Debug >/dev/null
cmake --build "$build" --target "fuzz_$name" -j2
mkdir -p "$build/corpus/$name" "$build/crashes/$name"
exec "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -artifact_prefix="$build/crashes/$name/" \
  "$build/corpus/$name" "$root/fuzz/corpus/$name"
