#!/bin/sh
# Sets up a private 32-bit Wine in the build tree, from Debian's i386
# packages, without installing anything into the system: Debian's wine32
# cannot be installed next to this machine's 64-bit Wine, and a 64-bit-only
# Wine "runs" a 32-bit program by printing nothing and exiting 0.
#
#   wine32-setup.sh [folder]      (default: build/wine32)
#
# The result is one self-contained folder, <folder>/root/usr/lib/wine, with
#   wine        the 32-bit loader, started through the unpacked 32-bit ld.so
#   wine64      a copy of the system's 64-bit loader (so that 32-bit and
#               64-bit programs can start each other)
#   wineserver  the system's wineserver (one server, same version, for both)
# Put that folder first on PATH and use a prefix made by this Wine.
# Idempotent: a finished set-up is reused (well under a second).
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
dest=${1:-$root/build/wine32}

fail() {
  echo "wine32-setup: $*" >&2
  echo "wine32-setup: the i686 tests cannot run without a 32-bit Wine." >&2
  exit 1
}

version=$(dpkg-query -W -f='${Version}' libwine 2>/dev/null) || fail "the 64-bit Wine (libwine) is not installed"
[ -n "$version" ] || fail "the 64-bit Wine (libwine) is not installed"
bin="$dest/root/usr/lib/wine"
stamp="$dest/complete-$version"
if [ -f "$stamp" ] && [ -x "$bin/wine" ]; then
  exit 0
fi

# Everything that the 32-bit loader and Wine's Unix side load, for windows,
# fonts and TLS included.
packages="libwine=$version wine32=$version libc6 libgcc-s1 libx11-6 libxext6 libxcb1 libxau6 libxdmcp6
libbsd0 libmd0 libxrender1 libxi6 libxrandr2 libxfixes3 libxcursor1 libxinerama1 libxcomposite1 libxxf86vm1
libfreetype6 libpng16-16 zlib1g libbrotli1 libfontconfig1 libexpat1 libgnutls30 libp11-kit0 libffi8
libidn2-0 libunistring2 libtasn1-6 libnettle8 libhogweed6 libgmp10"

echo "setup: a private 32-bit Wine $version in $dest"
rm -rf "$dest"
mkdir -p "$dest"
work="$dest/apt"
mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/etc/sources.list.d" \
  "$work/etc/preferences.d" "$dest/debs"
: >"$work/state/status"

# A private apt: its own state, cache and sources, i386 only. Only bookworm
# and bookworm-updates: the security archive's i386 index fails its hash
# check on this network, and nothing from it is needed.
mirror=http://deb.debian.org/debian
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
cat >"$work/etc/sources.list" <<EOF
deb [arch=i386 signed-by=$keyring] $mirror bookworm main
deb [arch=i386 signed-by=$keyring] $mirror bookworm-updates main
EOF
cat >"$work/apt.conf" <<EOF
APT::Architecture "i386";
APT::Architectures { "i386"; };
APT::Sandbox::User "root";
Dir::State "$work/state";
Dir::State::status "$work/state/status";
Dir::Cache "$work/cache";
Dir::Etc::SourceList "$work/etc/sources.list";
Dir::Etc::SourceParts "$work/etc/sources.list.d";
Dir::Etc::Preferences "$work/etc/preferences";
Dir::Etc::PreferencesParts "$work/etc/preferences.d";
EOF
export APT_CONFIG="$work/apt.conf"
apt-get update -qq >"$dest/apt.log" 2>&1 || fail "cannot read Debian's i386 package lists (see $dest/apt.log)"
apt-cache show "libwine=$version" >/dev/null 2>&1 ||
  fail "libwine:i386 $version (the version of the installed 64-bit Wine) is not available from $mirror"
# shellcheck disable=SC2086
(cd "$dest/debs" && apt-get download -qq $packages >>"$dest/apt.log" 2>&1) ||
  fail "downloading the i386 packages failed (see $dest/apt.log)"

for deb in "$dest"/debs/*.deb; do
  dpkg-deb -x "$deb" "$dest/root"
done
rm -rf "$dest/debs" "$work"

# The loader cannot be started by the kernel (its interpreter, the 32-bit
# ld.so, is not on this system), so "wine" starts it through the unpacked
# ld.so. Wine 8 finds its files from the folder of the program the kernel
# started, so the ld.so must be a copy in this folder, and --argv0 names the
# wrapper, which Wine then uses to start further 32-bit programs.
mv "$bin/wine" "$bin/wine32.bin"
cp "$dest/root/lib/i386-linux-gnu/ld-linux.so.2" "$bin/ld-linux.so.2"
cat >"$bin/wine" <<'EOF'
#!/bin/sh
here=$(dirname "$(readlink -f "$0")")
top=$(cd "$here/../../.." && pwd)
exec "$here/ld-linux.so.2" --library-path "$top/lib/i386-linux-gnu:$top/usr/lib/i386-linux-gnu" \
  --argv0 "$here/wine" "$here/wine32.bin" "$@"
EOF
chmod +x "$bin/wine"
cp /usr/lib/wine/wine64 "$bin/wine64"
rm -f "$bin/wineserver" "$bin/wineserver32"
cp /usr/lib/wine/wineserver64 "$bin/wineserver"
mkdir -p "$dest/root/usr/lib/x86_64-linux-gnu"
ln -sfn /usr/lib/x86_64-linux-gnu/wine "$dest/root/usr/lib/x86_64-linux-gnu/wine"

# What libwine's installation does for zlib1.dll: Wine's builtin copy of
# the MinGW zlib.
zlib=/usr/i686-w64-mingw32/lib/zlib1.dll
[ -f "$zlib" ] || fail "$zlib is missing (package libz-mingw-w64)"
{
  head -c 64 "$zlib"
  printf 'Wine builtin DLL'
  head -c 16 /dev/zero
  tail -c +97 "$zlib"
} >"$dest/root/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll"

touch "$stamp"
echo "setup: 32-bit Wine ready: $bin"
