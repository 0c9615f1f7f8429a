#!/bin/sh
# Builds the release archives: build/package-<arch>/MvSup2u-<version>-<arch>.zip
# for x86_64 and i686 (the library and tool only; no tests). Two runs from
# the same commit give the same bytes.
#   package.sh [arch...]     default: x86_64 i686
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
archs=${*:-x86_64 i686}
for arch in $archs; do
  dir="$root/build/package-$arch"
  cmake -S "$root" -B "$dir" -G Ninja -Wno-dev --no-warn-unused-cli \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-$arch-w64-mingw32.cmake" \
    -DMVSUP_BUILD_TESTS=OFF -DMVSUP_BUILD_BENCH=OFF >/dev/null
  cmake --build "$dir" --target release_archive
  ls "$dir"/MvSup2u-*-"$arch".zip
done
