#!/bin/sh
# The main job: builds the library and the support tool, installs them into a
# fresh private Wine prefix as a per-user client installation
# (samples/client.reg), shows what the library sees there, and walks a
# client's typical request on one document item (samples/item.txt).
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
. "$root/scripts/wine-env.sh"

build="$root/build/x86_64"
cmake -S "$root" -B "$build" -G Ninja -Wno-dev --no-warn-unused-cli \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-x86_64-w64-mingw32.cmake" >/dev/null
cmake --build "$build" --target MvSup2u SDKSatellite_0407 mvsup >/dev/null

prefix="$root/build/demo-prefix"
rm -rf "$prefix"
wine_session_start "$prefix"
trap wine_session_stop EXIT

# The installation the sample configuration points at.
install="$prefix/drive_c/Program Files/Corvell/Mervane Client"
mkdir -p "$install/0407"
cp "$build/bin/MvSup2u.dll" "$build/bin/mvsup.exe" "$install/"
cp "$build/bin/0407/SDKSatellite.dll" "$install/0407/"
wine regedit /S "$root/samples/client.reg"

mvsup() { wine "$install/mvsup.exe" "$@"; }

echo "== mvsup info (sample client configuration: samples/client.reg)"
mvsup info

# The typical request: a client component fills an item info from the
# server's property text and commits it; another reads single values back
# from the committed block without opening it. The files stay inside the
# prefix (its Documents folder is the Unix home directory).
mkdir -p "$prefix/drive_c/demo"
cp "$root/samples/item.txt" "$prefix/drive_c/demo/item.txt"
item='C:\demo\item.mvx'

echo
echo "== mvsup item make (server properties of one document: samples/item.txt)"
mvsup item make "$item" --from 'C:\demo\item.txt'
echo
echo "== mvsup item dump"
mvsup item dump "$item"
echo
echo "== mvsup item get (single values, read with the one-call readers)"
for name in displayname handle parents getlastmodified "Cost Centre"; do
  printf '%-26s' "$name"
  mvsup item get "$item" "$name"
done
printf '%-26s' "Cost Centre (as integer)"
mvsup item get "$item" "Cost Centre" --as integer

# The document's content type and icon, as the client's views show them, and
# the gateway URL of the item on its server.
echo
echo "== mvsup mime / icon (content type, format name and icon of the document's file)"
mvsup mime 'C:\demo\Budget 2006.xls' 'C:\demo\notes.txt'
mvsup icon .xls
echo
echo "== mvsup url (the server's URL rules)"
mvsup url make http://mervane.example.com Collection-5
mvsup url decompose http://mervane.example.com:8080/mvcgi/mv.py/Collection-5
mvsup url escape 'Budget 2006/Q1.xls'

# What a support engineer does to see the calls: switch the trace log on,
# reproduce, read the log, switch it off again.
echo
echo "== mvsup trace on / item get / trace show (the call-trace log of one call)"
mvsup trace on --level 2 --dir 'C:\demo\trace'
mvsup item get "$item" getcontentlength >/dev/null
mvsup trace show
mvsup trace off
