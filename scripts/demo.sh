#!/usr/bin/env bash
# Plays the demonstration piece on a virtual display and keeps screenshots.
#
#   scripts/demo.sh BUILD_FOLDER OUTPUT_FOLDER
#
# Everything happens in the output folder: a home of its own for the player, a sound server with a null sink, a
# display with a window manager. What the last demonstration left there goes first, and nothing else. Ends by itself; status 0 when the player was seen playing
# and ended in order.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."
build=$1
out=$2
rm -rf "$out/home" "$out/music"
rm -f "$out"/[0-9]-*.png "$out"/{display,xvfb.log,openbox.log,pulse.log,player.log}
mkdir -p "$out/home" "$out/music"
chmod 700 "$out/home"

cleanup() {
    local pid
    for pid in "${player:-}" "${manager:-}" "${display_server:-}"; do
        [ -n "$pid" ] && kill "$pid" 2>/dev/null || true
    done
    [ -n "${PULSE_SERVER:-}" ] && pactl exit 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "${runtime:-}"
}
trap cleanup EXIT

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
    local until=$((SECONDS + $1))
    shift
    while ! "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$until" ] || return 1
        sleep 0.05
    done
}

# Sockets have short names only: the runtime folder lies in the temporary folder.
runtime=$(mktemp -d)
export XDG_RUNTIME_DIR=$runtime
export HOME=$out/home XDG_CONFIG_HOME=$out/home/config XDG_DATA_HOME=$out/home/data
export XDG_CACHE_HOME=$out/home/cache
mkdir -p "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"

# A screen.
exec 3>"$out/display"
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp >"$out/xvfb.log" 2>&1 &
display_server=$!
exec 3>&-
wait_for 20 test -s "$out/display" || {
    echo "The virtual display did not come up:" >&2
    cat "$out/xvfb.log" >&2
    exit 1
}
DISPLAY=:$(cat "$out/display")
export DISPLAY
openbox >"$out/openbox.log" 2>&1 &
manager=$!
# xprop ends well without it, too, and says that there is none.
managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
wait_for 20 managed || {
    echo "The window manager did not come up:" >&2
    cat "$out/openbox.log" >&2
    exit 1
}
# A calm desktop to look at.
hsetroot -add '#33567a' -add '#16233a' -gradient 180 >/dev/null 2>&1 || xsetroot -solid '#2a4464'

# A sound server whose one sink is silent.
export PULSE_SERVER=unix:$runtime/pulse/native
mkdir -p "$runtime/pulse"
pulseaudio -n --daemonize=yes --exit-idle-time=-1 --disallow-exit=no --log-target="file:$out/pulse.log" \
    -L "module-null-sink sink_name=null1 rate=44100 channels=2" \
    -L "module-native-protocol-unix socket=$runtime/pulse/native" || true
wait_for 10 pactl info || echo "No sound server came up: the player plays silently." >&2

# The piece, and the list that names it.
"$build/tools/demo_piece/demo_piece" "$out/music/Harbour Lights.wav"
list=$XDG_DATA_HOME/velmora/Program\ Files/Norvane软件/Velmora/List
mkdir -p "$list"
printf '%s\r\n' "$out/music/Harbour Lights.wav" >"$list/zkPlayList.m3u"

# The main window, by its size: the splash ahead of it has the same title.
main_window() {
    local number
    for number in $(xdotool search --onlyvisible --class velmora); do
        xdotool getwindowgeometry "$number" 2>/dev/null | grep -q 'Geometry: 480x' && echo "$number" && return 0
    done
    return 1
}
failed() {
    echo "$1" >&2
    cat "$out/player.log" >&2
    exit 1
}
start_player() {
    "$build/src/velmora" 2>>"$out/player.log" &
    player=$!
    wait_for 20 main_window || failed "The player's window did not come up:"
    window=$(main_window)
    xdotool windowfocus --sync "$window" || true
}
# The window's title rolls once a medium is open.
title_rolls() { xdotool getwindowname "$window" | grep -q 'Harbour'; }
# Esc ends the program at once; the window is gone before the key is up. A program that is still
# starting takes no key, so it is pressed until it works.
escaped() {
    xdotool key --window "$window" Escape 2>/dev/null || true
    sleep 0.3
    ! kill -0 "$player" 2>/dev/null
}
end_player() {
    wait_for 20 escaped || failed "The player does not end:"
    local status=0
    wait "$player" || status=$?
    player=
    [ "$status" -eq 0 ] || failed "The player ended with status $status:"
}

start_player
import -window root "$out/1-idle.png"
# F6: the next track of the list, which is the piece.
xdotool key --window "$window" F6
wait_for 20 title_rolls || failed "The piece did not start:"
sleep 3
import -window root "$out/2-playing.png"
# F3 pauses.
xdotool key --window "$window" F3
sleep 0.5
import -window root "$out/3-paused.png"
end_player

# The piece once more in each language, with its words in the window and across the desktop. The
# player resumes what it played last.
settings=$XDG_CONFIG_HOME/velmora/registry.sqlite
put() {
    sqlite3 "$settings" "INSERT OR REPLACE INTO entries
        SELECT id, upper('$1'), '$1', 1, length('$2'), '$2' FROM keys WHERE folded LIKE '%\\PLAYSET' ESCAPE '~'"
}
words=$XDG_DATA_HOME/velmora/Program\ Files/Norvane软件/Velmora/Lyrics
number=0
for language in zh en fr ja; do
    put Language "$number"
    put Desktop_Lrc_AutoOpen 1
    rm -f "$words/Harbour Lights."[Ll][Rr][Cc]
    cp "assets/demo/Harbour Lights.$language.lrc" "$out/music/Harbour Lights.lrc"
    start_player
    wait_for 20 title_rolls || failed "The piece did not start:"
    sleep 3
    import -window root "$out/$((number + 4))-lyrics-$language.png"
    end_player
    number=$((number + 1))
done

echo "Screenshots:"
ls -1 "$out"/[0-9]*.png
