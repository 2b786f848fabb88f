#!/usr/bin/env bash
# Builds the program and runs it on a demonstration site of eight simulated modules.
#
#   scripts/demo.sh [--seconds N] [--screenshot FILE]
#
# --seconds N        ends after N seconds, with status 0 when the program ran and polled
# --screenshot FILE  saves the screen as a PNG file before it ends (after 12 seconds without
#                    --seconds)
#
# Without a display the screen is served to a VNC viewer on 127.0.0.1:5900.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

seconds=0
screenshot=
while [ $# -gt 0 ]; do
    case $1 in
    --seconds) seconds=${2:?a number of seconds}; shift 2 ;;
    --screenshot) screenshot=$(realpath -m "${2:?a file}"); shift 2 ;;
    *) echo "usage: scripts/demo.sh [--seconds N] [--screenshot FILE]" >&2; exit 2 ;;
    esac
done
[ -z "$screenshot" ] || [ "$seconds" -gt 0 ] || seconds=12

scripts/packages.sh
if [ -n "$screenshot" ]; then
    [ -z "${WAYLAND_DISPLAY:-}" ] || scripts/packages.sh grim
    [ -z "${DISPLAY:-}" ] || scripts/packages.sh imagemagick
fi
cmake --preset release >/dev/null
cmake --build --preset release --target \
    korvanelle korvanelle-sim korvanelle-mksite korvanelle_base
run=$root/run
cmake --install build/release --prefix "$run" >/dev/null

# Only what is missing is laid out: the folder belongs to its user.
bus=$run/bus
[ -e "$run/korvanelle.ini" ] || printf '; Serial ports of this machine.\r\n[Ports]\r\nCOM1=%s\r\n' "$bus" >"$run/korvanelle.ini"
[ -e "$run/korvanelle.dat" ] ||
    build/release/tools/mksite/korvanelle-mksite data/demo/site.json "$run/korvanelle.cfg" "$run/korvanelle.dat"

# Holds the standard input of the simulator open; commands may be written to it.
commands=$(mktemp -u)
mkfifo "$commands"
exec 3<>"$commands"
rm -f "$commands"
"$run/korvanelle-sim" --link "$bus" --scenario data/demo/scenario.json <&3 >"$run/simulator.log" &
simulator=$!
program=
finish() {
    [ -z "$program" ] || kill "$program" 2>/dev/null || true
    [ -z "$program" ] || wait "$program" 2>/dev/null || true
    kill "$simulator" 2>/dev/null || true
}
trap finish EXIT
trap 'exit 130' INT TERM
for _ in $(seq 50); do [ -e "$bus" ] && break; sleep 0.1; done

# Of a display of its own kind, or of what is served.
save_screen() {
    case $QT_QPA_PLATFORM in
    vnc*) scripts/screenshot.py "$screenshot" "$served" ;;
    wayland*) grim "$screenshot" ;;
    *) import -window root "$screenshot" ;;
    esac
}

served=
if [ -z "${QT_QPA_PLATFORM:-}" ]; then
    if [ -n "${WAYLAND_DISPLAY:-}" ]; then
        export QT_QPA_PLATFORM=wayland
    elif [ -n "${DISPLAY:-}" ]; then
        export QT_QPA_PLATFORM=xcb
    else
        served=5900
    fi
fi

trace=$run/Trace/$(date +%Y%m%d).log
lines=0
[ ! -e "$trace" ] || lines=$(wc -l <"$trace")
if [ -n "$served" ]; then
    cc -shared -fPIC -O1 -o "$root/build/loopback.so" scripts/loopback.c -ldl
    export QT_QPA_PLATFORM="vnc:size=800x600:port=$served"
    echo "No display: the screen is served to a VNC viewer on 127.0.0.1:$served"
    LD_PRELOAD=$root/build/loopback.so "$run/korvanelle" &
else
    "$run/korvanelle" &
fi
program=$!
echo "The program runs. The bus is at $bus; ends with Ctrl+C."

if [ "$seconds" -eq 0 ]; then
    wait "$program"
    exit
fi
sleep "$seconds"
[ -z "$screenshot" ] || save_screen
kill -0 "$program" || { echo "The program ended by itself." >&2; exit 1; }
tail -n +"$((lines + 1))" "$trace" | grep -qE "APPEAR|COMMAND" || { echo "No module was polled." >&2; exit 1; }
echo "The program ran and polled."
