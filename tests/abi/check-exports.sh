#!/bin/sh
# Checks a built PE file: its export table holds exactly the names of the
# .def file (undecorated, on both architectures), and it imports only
# Windows system DLLs.
#   check-exports.sh <objdump> <file.dll|exe> <file.def|-> [also-allowed.dll]
set -eu
objdump=$1
binary=$2
def=$3
extra=$(printf '%s' "${4:-}" | tr 'A-Z' 'a-z')
status=0
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

"$objdump" -p "$binary" >"$tmp/headers"

# Imports: only these system DLLs may appear.
allowed='^(kernel32|user32|gdi32|advapi32|shell32|shlwapi|ole32|oleaut32|msvcrt|version|comctl32|comdlg32|crypt32|rpcrt4|ws2_32)\.dll$'
grep 'DLL Name:' "$tmp/headers" | sed 's/.*DLL Name: *//' | tr 'A-Z' 'a-z' | sort -u >"$tmp/imports"
if grep -v -E "$allowed" "$tmp/imports" | grep -v -x -F "${extra:-/}" >"$tmp/bad"; then
  echo "non-system imports in $(basename "$binary"):"; sed 's/^/  /' "$tmp/bad"
  status=1
fi
echo "imports: $(tr '\n' ' ' <"$tmp/imports")"

if [ "$def" != "-" ]; then
  # Names in the export name table, as objdump prints it: "[ord] Name".
  sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' "$tmp/headers" |
    sed -n 's/^[[:space:]]*\[[[:space:]]*[0-9]*\][[:space:]]*\([^[:space:]]*\).*/\1/p' | sort >"$tmp/exported"
  sed -n '/^EXPORTS/,$p' "$def" | grep -E '^[[:space:]]+[A-Za-z_]' | sed 's/^[[:space:]]*//; s/[[:space:]].*//' |
    sort >"$tmp/wanted"
  if ! diff -u "$tmp/wanted" "$tmp/exported" >"$tmp/diff"; then
    echo "export table differs from $(basename "$def") (- wanted, + exported):"
    cat "$tmp/diff"
    status=1
  fi
  if grep -q '@' "$tmp/exported"; then
    echo "decorated names in the export table"; status=1
  fi
  echo "exports: $(wc -l <"$tmp/exported") names"
fi
exit $status
