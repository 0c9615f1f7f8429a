# Sourced by the scripts: a private Wine prefix, a virtual X display and a
# persistent wineserver for the duration of a run.
#   wine_session_start <prefix> [wine-folder]   wine_session_stop
# A wine folder (the private 32-bit Wine, see wine32-setup.sh) goes first on
# PATH for the session, so that wine and wineserver both come from it.

wine_session_start() {
  export WINEPREFIX="$1"
  if [ -n "${2:-}" ]; then
    MVSUP_SAVED_PATH=$PATH
    export PATH="$2:$PATH"
  fi
  export WINEDEBUG=-all
  export WINEDLLOVERRIDES="mscoree,mshtml="
  export LANG=en_US.UTF-8
  mkdir -p "$WINEPREFIX"
  if [ -z "${DISPLAY:-}" ]; then
    display=99
    while [ -e "/tmp/.X$display-lock" ]; do display=$((display + 1)); done
    Xvfb ":$display" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
    MVSUP_XVFB_PID=$!
    export DISPLAY=":$display"
    sleep 1
  fi
  # A persistent server, and the prefix booted with its output detached, so
  # that Wine's background services never hold a caller's pipe open. (The
  # system's wineboot script would run the system's Wine: boot through the
  # wine on PATH.)
  wineserver -p </dev/null >/dev/null 2>&1 || true
  wine wineboot </dev/null >/dev/null 2>&1 || true
  # A program that crashes must fail its test at once, not wait at a dialog.
  wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f </dev/null >/dev/null 2>&1 || true
}

wine_session_stop() {
  wineserver -k >/dev/null 2>&1 || true
  if [ -n "${MVSUP_SAVED_PATH:-}" ]; then
    export PATH="$MVSUP_SAVED_PATH"
    unset MVSUP_SAVED_PATH
  fi
  if [ -n "${MVSUP_XVFB_PID:-}" ]; then
    kill "$MVSUP_XVFB_PID" 2>/dev/null || true
    unset MVSUP_XVFB_PID
    unset DISPLAY
  fi
}
