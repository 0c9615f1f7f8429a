#!/bin/sh
# Generates the reference documentation of the public headers with Doxygen;
# any warning (an undocumented export among them) fails the run.
#   make-reference.sh <doxygen> <source folder> <output folder> [--check <MvSup2u.def>]
# --check also proves that every name of the .def is documented and that
# every header of src/exports has its page.
set -eu
doxygen=$1 source=$2 out=$3
rm -rf "$out"
mkdir -p "$out"
version=$(sed -n 's/^project(MvSup2u VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
if ! MVSUP_SOURCE="$source" MVSUP_REFERENCE="$out" MVSUP_VERSION="$version" \
     "$doxygen" "$source/docs/Doxyfile" >"$out/doxygen.log" 2>&1 || [ -s "$out/warnings.log" ]; then
  echo "doxygen reported problems:"
  cat "$out/warnings.log" "$out/doxygen.log"
  exit 1
fi
echo "reference documentation: $out/html/index.html"
[ "${4:-}" = "--check" ] || exit 0

status=0
def=$5
python3 - "$out/xml" "$def" "$source/src/exports" "$out/html" <<'PY' || status=1
import os, re, sys
import xml.etree.ElementTree as ET
xml_dir, def_file, headers, html = sys.argv[1:5]

def text(element):
    return "".join(element.itertext()).strip() if element is not None else ""

pages = {}      # header -> its HTML page
functions = {}  # function -> documented?
for name in os.listdir(xml_dir):
    if not name.endswith("_8h.xml"):
        continue
    compound = ET.parse(os.path.join(xml_dir, name)).getroot().find("compounddef")
    pages[compound.findtext("compoundname")] = compound.get("id") + ".html"
    for member in compound.iter("memberdef"):
        if member.get("kind") == "function":
            documented = bool(text(member.find("briefdescription")) or text(member.find("detaileddescription")))
            functions[member.findtext("name")] = functions.get(member.findtext("name"), False) or documented

failures = []
for header in sorted(os.listdir(headers)):
    if header.endswith(".h") and (
            header not in pages or not os.path.exists(os.path.join(html, pages[header]))):
        failures.append(f"{header}: no reference page (a header needs a /** @file */ comment)")
in_exports = False
for line in open(def_file):
    if line.startswith("EXPORTS"):
        in_exports = True
    elif in_exports and re.match(r"\s+[A-Za-z_]", line):
        name = line.split()[0].split("@")[0]
        if name not in functions:
            failures.append(f"{name}: exported but not in the reference")
        elif not functions[name]:
            failures.append(f"{name}: exported but not documented")
for failure in failures:
    print(failure)
print(f"{sum(functions.values())} documented functions on {len(pages)} family pages")
sys.exit(1 if failures else 0)
PY
exit $status
