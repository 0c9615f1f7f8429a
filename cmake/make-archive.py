#!/usr/bin/env python3
"""Writes a release archive that depends on nothing but the files' contents.

    make-archive.py [--source DIR] <stage> <top folder> <out.zip>

Zips <stage>/<top folder> with its entries in sorted order, each dated by the
last commit of the source tree (SOURCE_DATE_EPOCH when set; no earlier than
1980, which zip cannot hold), with fixed permissions and no owner, access or
change times: two builds of the same commit give the same bytes.
"""
import argparse
import os
import subprocess
import sys
import time
import zipfile

ZIP_EPOCH = 315532800  # 1980-01-01T00:00:00Z


def archive_time(source):
    if os.environ.get("SOURCE_DATE_EPOCH"):
        return int(os.environ["SOURCE_DATE_EPOCH"])
    if source:
        try:
            out = subprocess.run(["git", "-C", source, "log", "-1", "--format=%ct"],
                                 capture_output=True, text=True, check=True).stdout.strip()
            return int(out)
        except (OSError, subprocess.CalledProcessError, ValueError):
            pass
    return ZIP_EPOCH


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--source")
    parser.add_argument("stage")
    parser.add_argument("top")
    parser.add_argument("out")
    args = parser.parse_args()

    stamp = time.gmtime(max(archive_time(args.source), ZIP_EPOCH))[:6]
    root = os.path.join(args.stage, args.top)
    names = []
    for folder, dirs, files in os.walk(root):
        dirs.sort()
        for name in files:
            path = os.path.join(folder, name)
            names.append(os.path.relpath(path, args.stage).replace(os.sep, "/"))
    if not names:
        sys.exit(f"make-archive: nothing to archive in {root}")

    tmp = args.out + ".tmp"
    with zipfile.ZipFile(tmp, "w") as archive:
        for name in sorted(names):
            info = zipfile.ZipInfo(name, date_time=stamp)
            info.create_system = 3  # Unix: the permissions below are read
            executable = name.lower().endswith((".exe", ".dll"))
            info.external_attr = (0o100755 if executable else 0o100644) << 16
            info.compress_type = zipfile.ZIP_DEFLATED
            with open(os.path.join(args.stage, name), "rb") as f:
                archive.writestr(info, f.read(), compresslevel=9)
    os.replace(tmp, args.out)


if __name__ == "__main__":
    main()
