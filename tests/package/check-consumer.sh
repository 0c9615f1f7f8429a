#!/bin/sh
# Installs the build into a fresh prefix and checks the tree, then builds the
# consumer project against it - once through find_package, once through
# pkg-config, each given nothing but the prefix - and runs both programs and
# the installed tool under Wine.
#   check-consumer.sh <source> <build> <toolchain file> <C compiler> <version> <work dir> <emulator...>
set -eu
source=$1 build=$2 toolchain=$3 cc=$4 version=$5 work=$6
shift 6
tools=${cc%-gcc*}
rm -rf "$work"
mkdir -p "$work"
prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" >"$work/install.log"
status=0

# run_consumer <kind> <program> <emulator...>: the program must say so itself
# (a Wine that cannot run it may exit 0 without a word).
run_consumer() {
  kind=$1 program=$2
  shift 2
  output=$("$@" "$program" 2>&1) || true
  echo "$output"
  case "$output" in
    *"consumer ok ($kind)"*) ;;
    *) echo "the $kind consumer did not run to its end"; status=1 ;;
  esac
}

for file in bin/MvSup2u.dll bin/MvSup2u.dll.debug bin/mvsup.exe bin/0407/SDKSatellite.dll \
            lib/libMvSup2u.dll.a lib/MvSup2u.lib lib/cmake/MvSup2u/MvSup2uConfig.cmake \
            lib/cmake/MvSup2u/MvSup2uConfigVersion.cmake lib/pkgconfig/MvSup2u.pc \
            share/MvSup2u/vba/MvSup2u.bas share/MvSup2u/dotnet/NativeMethods.cs \
            share/doc/MvSup2u/README.md share/doc/MvSup2u/LICENSE.txt; do
  [ -s "$prefix/$file" ] || { echo "missing from the install tree: $file"; status=1; }
done
(cd "$source/src/exports" && ls -- *.h) >"$work/headers.public"
(cd "$prefix/include" && ls) >"$work/headers.installed"
diff -u "$work/headers.public" "$work/headers.installed" || { echo "include/ differs from the public headers"; status=1; }

# The shipped DLL has no DWARF of its own, and its debug link names the
# debug file beside it with that file's CRC.
if "$tools-objdump" -h "$prefix/bin/MvSup2u.dll" | grep -q '\.debug_'; then
  echo "bin/MvSup2u.dll still holds debug sections"; status=1
fi
"$tools-objcopy" --dump-section .gnu_debuglink="$work/debuglink" "$prefix/bin/MvSup2u.dll" "$work/dll-copy"
python3 - "$work/debuglink" "$prefix/bin/MvSup2u.dll.debug" <<'PY' || status=1
import sys, zlib
link = open(sys.argv[1], "rb").read()
name = link[:link.index(b"\0")].decode()
crc = int.from_bytes(link[-4:], "little")
actual = zlib.crc32(open(sys.argv[2], "rb").read())
if name != "MvSup2u.dll.debug" or crc != actual:
    sys.exit(f"debug link names {name} with CRC {crc:08x}; MvSup2u.dll.debug has CRC {actual:08x}")
PY
if ! "$tools-objdump" -h "$prefix/bin/MvSup2u.dll.debug" | grep -q '\.debug_info'; then
  echo "bin/MvSup2u.dll.debug holds no DWARF"; status=1
fi

# find_package
cmake -S "$source/tests/package/consumer" -B "$work/cmake-build" -G Ninja -Wno-dev \
  -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_PREFIX_PATH="$prefix" -DEXPECTED_VERSION="$version" \
  >"$work/cmake-configure.log" 2>&1 || { cat "$work/cmake-configure.log"; exit 1; }
cmake --build "$work/cmake-build" >"$work/cmake-build.log" 2>&1 || { cat "$work/cmake-build.log"; exit 1; }
run_consumer cmake "$work/cmake-build/consumer.exe" "$@"

# pkg-config: the flags, and the DLL from the package's bindir
mkdir -p "$work/pkg-config"
pc() { PKG_CONFIG_LIBDIR="$prefix/lib/pkgconfig" PKG_CONFIG_PATH="" pkg-config "$@" MvSup2u; }
[ "$(pc --modversion)" = "$version" ] || { echo "pkg-config gives version $(pc --modversion)"; status=1; }
# shellcheck disable=SC2046
"$cc" -std=c11 -Wall -Wextra -Werror -DUNICODE -D_UNICODE '-DCONSUMER_KIND="pkg-config"' \
  "$source/tests/package/consumer/consumer.c" $(pc --cflags --libs) -o "$work/pkg-config/consumer.exe"
cp "$(pc --variable=bindir)/MvSup2u.dll" "$work/pkg-config/"
run_consumer pkg-config "$work/pkg-config/consumer.exe" "$@"

# The installed tool runs from bin/ with the stripped DLL.
if ! "$@" "$prefix/bin/mvsup.exe" b64 encode "$prefix/lib/pkgconfig/MvSup2u.pc" >"$work/tool.log" 2>&1 ||
   [ "$(tr -d '\r\n' <"$work/tool.log")" != "$(base64 -w0 "$prefix/lib/pkgconfig/MvSup2u.pc")" ]; then
  echo "bin/mvsup.exe b64 encode failed:"; cat "$work/tool.log"; status=1
fi
[ $status -eq 0 ] && echo "install tree, find_package and pkg-config consumers: all good"
exit $status
