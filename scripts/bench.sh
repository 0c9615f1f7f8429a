#!/bin/sh
# Builds and runs the benchmark program under Wine. Arguments name the
# benchmarks to run (all when none): see "scripts/bench.sh --list".
#   scripts/bench.sh [--arch x86_64|i686] [name...]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
arch=x86_64
if [ "${1:-}" = "--arch" ]; then
  arch=${2:?--arch needs x86_64 or i686}
  shift 2
fi
case $arch in
  x86_64) wine_dir="" ;;
  i686) wine_dir="$root/build/wine32/root/usr/lib/wine" ;;
  *) echo "bench: unknown architecture $arch (x86_64 or i686)" >&2; exit 1 ;;
esac
if [ $arch = i686 ]; then "$root/scripts/setup.sh" --wine32; else "$root/scripts/setup.sh"; fi
. "$root/scripts/wine-env.sh"
build="$root/build/$arch"
cmake -S "$root" -B "$build" -G Ninja -Wno-dev --no-warn-unused-cli -DMVSUP_WINE_DIR="$wine_dir" \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-$arch-w64-mingw32.cmake" >/dev/null
cmake --build "$build" --target mvsup_bench >/dev/null
wine_session_start "$build/wineprefix" "$wine_dir"
trap wine_session_stop EXIT
if [ "${1:-}" = "--list" ]; then set -- none; fi
echo "== benchmarks on $arch"
wine "$build/bin/mvsup_bench.exe" "$@"
