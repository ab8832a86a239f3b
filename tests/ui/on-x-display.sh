#!/usr/bin/env bash
# Runs a command on a virtual X display of 1366x768 (or the size in TARVEX_SCREEN) with a
# window manager (openbox when it is installed), as a clinic's screen would be.
set -euo pipefail
exec xvfb-run -a -s "-screen 0 ${TARVEX_SCREEN:-1366x768}x24" bash -c '
    if command -v openbox >/dev/null; then
        openbox >/dev/null 2>&1 &
        wm=$!
        sleep 1
    fi
    "$@"
    status=$?
    [ -n "${wm:-}" ] && kill "$wm" 2>/dev/null
    exit $status
' _ "$@"
