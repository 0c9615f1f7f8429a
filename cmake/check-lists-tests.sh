#!/bin/sh
# Fails unless a test program, run through the emulator, lists at least one
# test. Guards against a Wine that silently runs nothing (e.g. a 64-bit-only
# Wine given a 32-bit program exits 0 without output).
#   check-lists-tests.sh <emulator> [emulator-args...] <program.exe>
out=$("$@" --gtest_list_tests 2>/dev/null)
count=$(printf '%s\n' "$out" | grep -c '^  ')
if [ "$count" -gt 0 ]; then
  echo "$count tests listed"
  exit 0
fi
for program; do :; done
echo "no tests listed by $(basename "$program")" >&2
exit 1
