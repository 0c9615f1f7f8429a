#!/bin/sh
# Installs what the build and the tests need, from Debian's packages, when it
# is missing. Safe to run again: it does nothing when all is there.
#   setup.sh [--wine32]   --wine32 also sets up the private 32-bit Wine that
#                         runs the i686 tests (build/wine32, wine32-setup.sh)
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)

packages="g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools binutils-mingw-w64-x86-64
binutils-mingw-w64-i686 cmake ninja-build googletest wine wine64 xvfb xauth"
# The MSVC-ABI test clients: clang, lld-link, and Wine's Windows and C runtime
# headers.
packages="$packages clang lld libwine-dev"
# Packaging checks: reference documentation, the caller declarations' checks,
# the pkg-config consumer, the .NET declarations' compile.
packages="$packages doxygen python3 pkgconf mono-mcs"

missing=""
for package in $packages; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing="$missing $package"
  fi
done
# The MSVC-style import libraries are written by llvm-dlltool.
if ! ls /usr/bin/llvm-dlltool* >/dev/null 2>&1; then
  missing="$missing llvm"
fi

if [ -n "$missing" ]; then
  echo "setup: installing$missing"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  # shellcheck disable=SC2086
  $sudo apt-get install -y -qq --no-install-recommends $missing >/dev/null
fi

if [ "${1:-}" = "--wine32" ]; then
  "$root/scripts/wine32-setup.sh" "$root/build/wine32"
fi
