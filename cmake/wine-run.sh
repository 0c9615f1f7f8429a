#!/bin/sh
# Runs a Windows program under Wine in the build tree's private prefix.
#   wine-run.sh [--wine-dir DIR] <prefix-dir> <program.exe> [args...]
# --wine-dir puts a private Wine (the 32-bit one of wine32-setup.sh) first
# on PATH. The environment is pinned: no debug output, no Mono/Gecko
# prompts, UTC unless the caller chose a zone, English locale (ANSI code
# page 1252) unless the caller chose one in MVSUP_LOCALE. When no
# wineserver serves the prefix yet, a persistent one is started and the
# prefix booted with its output detached: Wine's background services would
# otherwise inherit the caller's pipes and keep ctest waiting.
if [ "$1" = "--wine-dir" ]; then
  [ -n "$2" ] && PATH="$2:$PATH" && export PATH
  shift 2
fi
prefix=$1
shift
export WINEPREFIX="$prefix"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="mscoree,mshtml="
export LANG=en_US.UTF-8
export TZ="${TZ:-UTC}"
# A run may ask for another locale, and with it another ANSI code page (Wine
# takes it from LC_ALL when a process starts; the Unix locale need not be
# installed). No LC_ALL from the caller's environment gets through otherwise.
if [ -n "${MVSUP_LOCALE:-}" ]; then export LC_ALL="$MVSUP_LOCALE"; else unset LC_ALL; fi

server_running() {
  [ -d "$prefix" ] || return 1
  id=$(printf '%x-%x' $(stat -c '%d %i' "$prefix"))
  for socket in /tmp/wine-*/server-"$id"/socket /tmp/.wine-"$(id -u)"/server-"$id"/socket; do
    [ -S "$socket" ] && return 0
  done
  return 1
}

if ! server_running; then
  mkdir -p "$prefix"
  (
    flock 9
    if ! server_running; then
      wineserver -p </dev/null >/dev/null 2>&1
      wine wineboot </dev/null >/dev/null 2>&1
      # A program that crashes must fail at once, not wait at a dialog.
      wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f </dev/null >/dev/null 2>&1
    fi
  ) 9>"$prefix.lock"
fi
exec wine "$@"
