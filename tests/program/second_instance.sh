#!/usr/bin/env bash
# Starts the program, then a second copy for the same user: the second must end at once,
# with status 0 and nothing on its output, while the first goes on.
set -u
tarvex="$1"
home=$(mktemp -d)
trap 'kill $first 2>/dev/null; rm -rf "$home"' EXIT
export HOME="$home" XDG_DATA_HOME="$home/data" XDG_CONFIG_HOME="$home/config"

"$tarvex" >"$home/first.log" 2>&1 &
first=$!
# The first copy is up once its data folder holds the databases and the lock.
for _ in $(seq 1 100); do
    [ -f "$home/data/Tarvex/Tarvex.MDB" ] && [ -f "$home/data/Tarvex/tarvex.lock" ] && break
    sleep 0.2
done
[ -f "$home/data/Tarvex/tarvex.lock" ] || { echo "FAIL: the first copy did not start"; cat "$home/first.log"; exit 1; }

start=$(date +%s%N)
timeout 20 "$tarvex" >"$home/second.log" 2>&1
status=$?
output=$(grep -v -e XDG_RUNTIME_DIR -e propagateSizeHints "$home/second.log")
elapsed=$(( ($(date +%s%N) - start) / 1000000 ))
if [ "$status" -ne 0 ]; then echo "FAIL: the second copy ended with status $status"; exit 1; fi
if [ -n "$output" ]; then echo "FAIL: the second copy said: $output"; exit 1; fi
# The splash alone would keep it three seconds.
if [ "$elapsed" -ge 2900 ]; then echo "FAIL: the second copy took ${elapsed} ms (it showed its splash?)"; exit 1; fi
if ! kill -0 $first 2>/dev/null; then echo "FAIL: the first copy ended"; exit 1; fi
echo "second copy ended silently in ${elapsed} ms; first copy still running"
