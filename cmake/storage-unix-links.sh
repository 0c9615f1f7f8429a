#!/bin/sh
# Makes the host symbolic links that the clean-up tests walk into, under
# C:\mvsup-unix-links of the test prefix:
#   base\tree\to-canary-dir    -> canary\full   (a directory with files)
#   base\tree\to-canary-empty  -> canary\empty  (an empty directory)
#   base\tree\to-canary-file   -> canary\file.txt
#   base\top-link              -> canary\full
#   storage-unix-links.sh <emulator command...>
# The emulator command is the build's (wine-run.sh [options] <prefix>); its
# last word is the prefix.
set -eu
for prefix in "$@"; do :; done
# The prefix's drive folder exists once Wine has booted it.
[ -d "$prefix/drive_c" ] || "$@" cmd /c exit >/dev/null 2>&1 || true
[ -d "$prefix/drive_c" ] || { echo "no drive_c in $prefix" >&2; exit 1; }
root="$prefix/drive_c/mvsup-unix-links"
mkdir -p "$root/base/tree" "$root/canary"
ln -sfn ../../canary/full "$root/base/tree/to-canary-dir"
ln -sfn ../../canary/empty "$root/base/tree/to-canary-empty"
ln -sfn ../../canary/file.txt "$root/base/tree/to-canary-file"
ln -sfn ../canary/full "$root/base/top-link"
echo "links made under $root"
