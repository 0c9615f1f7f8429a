#!/bin/sh
# The test command: sets up the machine (the private 32-bit Wine included),
# builds both architectures and runs every test on each. Exits non-zero on
# any failure, and when an architecture's tests could not run at all.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh" --wine32
build="$root/build"
wine32="$build/wine32"
. "$root/scripts/wine-env.sh"

wine_dir_of() {
  case $1 in
    i686) echo "$wine32/root/usr/lib/wine" ;;
    *) echo "" ;;
  esac
}

# A Wine that cannot run an architecture "runs" its programs by printing
# nothing and exiting 0; only a program that answers proves that the tests
# can run.
wine_runs() {
  arch=$1
  mkdir -p "$build/probe"
  printf '#include <stdio.h>\nint main(void) { printf("probe ok %%d\\n", (int)(sizeof(void *) * 8)); return 0; }\n' \
    >"$build/probe/probe.c"
  "$arch-w64-mingw32-gcc" -o "$build/probe/probe-$arch.exe" "$build/probe/probe.c" || return 1
  bits=64
  [ "$arch" = i686 ] && bits=32
  wine_session_start "$build/$arch/wineprefix" "$(wine_dir_of "$arch")"
  out=$(wine "$build/probe/probe-$arch.exe" 2>/dev/null || true)
  wine_session_stop
  case "$out" in *"probe ok $bits"*) return 0 ;; *) return 1 ;; esac
}

status=0
summary=""
for arch in x86_64 i686; do
  if ! wine_runs $arch; then
    echo "== $arch: Wine does not run $arch programs here; its tests cannot run" >&2
    status=1
    summary="$summary$arch: NOT RUN (Wine cannot run $arch programs)\n"
    continue
  fi
  echo "== building $arch"
  cmake -S "$root" -B "$build/$arch" -G Ninja -Wno-dev --no-warn-unused-cli -DMVSUP_WINE_TESTS=ON \
    -DMVSUP_WINE_DIR="$(wine_dir_of $arch)" \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-$arch-w64-mingw32.cmake" >/dev/null
  cmake --build "$build/$arch"

  echo "== testing $arch"
  wine_session_start "$build/$arch/wineprefix" "$(wine_dir_of $arch)"
  set +e
  # A test is run a second time only when its first run failed: Wine now and
  # then fails to start a process at all, and that must not fail the build.
  # A real failure fails both runs.
  (cd "$build/$arch" && ctest --output-on-failure --no-tests=error --repeat until-pass:2 -j "$(nproc)") \
    >"$build/$arch/ctest.log" 2>&1
  result=$?
  set -e
  wine_session_stop
  cat "$build/$arch/ctest.log"
  counts=$(grep -E '^[0-9]+% tests passed' "$build/$arch/ctest.log" | tail -1)
  if [ $result -eq 0 ]; then
    summary="$summary$arch: ${counts:-no test summary}\n"
  else
    status=1
    summary="$summary$arch: FAILED (${counts:-no test summary})\n"
  fi
done

echo "== summary"
printf "%b" "$summary"
if [ $status -eq 0 ]; then echo "== all tests passed on x86_64 and i686"; else echo "== TESTS FAILED"; fi
exit $status
