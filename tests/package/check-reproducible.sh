#!/bin/sh
# Builds the release archive in the build folder and once more from scratch
# in a second folder at another path (tests and benchmarks off), and
# compares the two archives byte for byte. On a difference, names the files
# that differ.
#   check-reproducible.sh <source> <build> <toolchain file> <generator> <build type> <second build> <archive name>
set -eu
source=$1 build=$2 toolchain=$3 generator=$4 build_type=$5 second=$6 archive=$7

cmake --build "$build" --target release_archive >"$build/reproducible-first.log" 2>&1 ||
  { cat "$build/reproducible-first.log"; exit 1; }
rm -rf "$second"
mkdir -p "$(dirname "$second")"
cmake -S "$source" -B "$second" -G "$generator" -Wno-dev -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
  -DCMAKE_BUILD_TYPE="$build_type" -DMVSUP_BUILD_TESTS=OFF -DMVSUP_BUILD_BENCH=OFF >"$second.log" 2>&1 &&
  cmake --build "$second" --target release_archive >>"$second.log" 2>&1 || { cat "$second.log"; exit 1; }

if cmp -s "$build/$archive" "$second/$archive"; then
  echo "$archive: the same $(wc -c <"$second/$archive") bytes from $build and $second"
  rm -rf "$second" "$second.log"
  exit 0
fi
echo "$archive differs between $build and $second:"
python3 - "$build/$archive" "$second/$archive" <<'PY'
import sys, zipfile
first, second = (zipfile.ZipFile(p) for p in sys.argv[1:3])
a = {i.filename: i for i in first.infolist()}
b = {i.filename: i for i in second.infolist()}
for name in sorted(set(a) | set(b)):
    if name not in a or name not in b:
        print(f"  {name}: only in {'first' if name in a else 'second'}")
    elif first.read(name) != second.read(name):
        print(f"  {name}: contents differ")
    elif (a[name].date_time, a[name].external_attr) != (b[name].date_time, b[name].external_attr):
        print(f"  {name}: date or permissions differ")
PY
exit 1
