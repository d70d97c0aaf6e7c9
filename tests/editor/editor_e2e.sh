#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The editor under a virtual X server with real input: choose the rectangle and the
# connector tools from the Tools menu by keyboard, drag each with the mouse, save with
# Ctrl+S, quit with Ctrl+Q, and read the saved drawing back with tessal-cli dump.
# Usage: editor_e2e.sh EDITOR CLI WORKDIR. Exit status 77: no X server could be started.
set -uo pipefail
editor=$1 cli=$2 work=$3
rm -rf "$work" && mkdir -p "$work"

for tool in Xvfb xdotool; do
    if ! command -v "$tool" >/dev/null; then
        echo "SKIP: $tool is not installed (run.sh installs xvfb and xdotool)"
        exit 77
    fi
done

display=""
for n in $(seq 90 120); do
    [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] && continue
    Xvfb ":$n" -screen 0 1400x1000x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
    xvfb=$!
    for _ in $(seq 50); do
        [ -e "/tmp/.X11-unix/X$n" ] && break
        kill -0 "$xvfb" 2>/dev/null || break
        sleep 0.1
    done
    if kill -0 "$xvfb" 2>/dev/null && [ -e "/tmp/.X11-unix/X$n" ]; then
        display=":$n"
        break
    fi
done
if [ -z "$display" ]; then
    echo "SKIP: the X server could not start:"; cat "$work/xvfb.log"
    exit 77
fi
editor_pid=""
cleanup() {
    [ -n "$editor_pid" ] && kill "$editor_pid" 2>/dev/null
    kill "$xvfb" 2>/dev/null
}
trap cleanup EXIT
export DISPLAY=$display QT_QPA_PLATFORM=xcb XDG_CONFIG_HOME=$work/config
fail() { echo "FAIL: $*"; exit 1; }

drawing=$work/e2e.tsd
"$editor" "$drawing" >"$work/editor.log" 2>&1 &
editor_pid=$!
window=$(timeout 15 xdotool search --sync --onlyvisible --name "Tessal Editor" | head -1)
[ -n "$window" ] || fail "the editor window did not appear: $(cat "$work/editor.log")"
xdotool windowsize "$window" 1200 850 windowmove "$window" 0 0 windowfocus --sync "$window"
sleep 0.5

# Picks entry n (0 first) of the Tools menu (Alt+T) by keyboard.
choose_tool() {
    xdotool key alt+t
    sleep 0.3
    for ((i = 0; i < $1; i++)); do xdotool key Down; done
    xdotool key Return
    sleep 0.3
}
# A left-button drag from (x, y) by (dx, dy) in five steps.
drag() {
    xdotool mousemove "$1" "$2" mousedown 1
    for step in 1 2 3 4 5; do
        xdotool mousemove $(($1 + step * $3 / 5)) $(($2 + step * $4 / 5))
        sleep 0.05
    done
    xdotool mouseup 1
    sleep 0.3
}

# The page is larger than the view, so the middle of the window lies on the surface.
eval "$(xdotool getwindowgeometry --shell "$window")"
cx=$((X + WIDTH / 2 - 150)) cy=$((Y + HEIGHT / 2))
choose_tool 6 # Rectangle
drag $((cx - 100)) $((cy - 60)) 200 120
choose_tool 0 # Connector
drag $((cx + 150)) $((cy - 60)) 120 100
xdotool key ctrl+s
sleep 0.5
xdotool key ctrl+q
for _ in $(seq 50); do
    kill -0 "$editor_pid" 2>/dev/null || break
    sleep 0.1
done
kill -0 "$editor_pid" 2>/dev/null && fail "the editor did not quit after saving"
editor_pid=""

[ -f "$drawing" ] || fail "nothing was saved: $(cat "$work/editor.log")"
"$cli" dump "$drawing" >"$work/dump.json" || fail "tessal-cli dump refused the file"
for class in TMyRectangle TMyLinkLine; do
    grep -q "\"$class\"" "$work/dump.json" ||
        fail "no $class in the saved drawing: $(head -c 2000 "$work/dump.json")"
done
echo "PASS: rectangle and connector drawn, saved with Ctrl+S and read back"
