#!/bin/sh
# Builds and runs the benchmark program (x86_64, under Wine). Arguments name
# the benchmarks to run (all when none): see "scripts/bench.sh --list".
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
. "$root/scripts/wine-env.sh"
build="$root/build/x86_64"
cmake -S "$root" -B "$build" -G Ninja -Wno-dev \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-x86_64-w64-mingw32.cmake" >/dev/null
cmake --build "$build" --target mvsup_bench >/dev/null
wine_session_start "$build/wineprefix"
trap wine_session_stop EXIT
if [ "${1:-}" = "--list" ]; then set -- none; fi
wine "$build/bin/mvsup_bench.exe" "$@"
