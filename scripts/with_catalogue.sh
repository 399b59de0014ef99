#!/usr/bin/env bash
# Serves a folder of music and lyrics on this machine and starts a player that finds them.
#
#   scripts/with_catalogue.sh BUILD_FOLDER HOME_FOLDER MUSIC_FOLDER
#
# The player's settings, lists and downloads lie in the home folder, so that nothing of this
# stays behind in the user's own. The server ends with the player.
set -euo pipefail
build=$1
home=$2
music=$3
mkdir -p "$home/config" "$home/data" "$home/cache" "$home/documents"
# Between the quotes of that file a backslash stands before what would end or change them.
printf 'XDG_DOCUMENTS_DIR="%s/documents"\n' "$(printf %s "$home" | sed 's/[\\"$`]/\\&/g')" >"$home/config/user-dirs.dirs"

log=$home/catalogue.log
rm -f "$log"
"$build/tools/catalogue/velmora-catalogue" --port 0 \
    --introduce "$home/config/velmora/registry.sqlite" "$music" >"$log" 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
# It says where it is once it has told the player's settings, and reads the folder behind that.
while ! grep -qs 'http://' "$log"; do
    if ! kill -0 "$server" 2>/dev/null; then
        cat "$log" >&2
        exit 1
    fi
    sleep 0.05
done
cat "$log"

# The user's sound server knows the player by this.
cookie=${XDG_CONFIG_HOME:-$HOME/.config}/pulse/cookie
[ -f "$cookie" ] && export PULSE_COOKIE=${PULSE_COOKIE:-$cookie}
XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache \
    "$build/src/velmora"
