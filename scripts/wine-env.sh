# Sourced by the scripts: a private Wine prefix, a virtual X display and a
# persistent wineserver for the duration of a run.
#   wine_session_start <prefix>   wine_session_stop

wine_session_start() {
  export WINEPREFIX="$1"
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
  # that Wine's background services never hold a caller's pipe open.
  wineserver -p </dev/null >/dev/null 2>&1 || true
  wineboot </dev/null >/dev/null 2>&1 || true
  # A program that crashes must fail its test at once, not wait at a dialog.
  wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f </dev/null >/dev/null 2>&1 || true
}

wine_session_stop() {
  wineserver -k >/dev/null 2>&1 || true
  if [ -n "${MVSUP_XVFB_PID:-}" ]; then
    kill "$MVSUP_XVFB_PID" 2>/dev/null || true
    unset MVSUP_XVFB_PID
    unset DISPLAY
  fi
}
