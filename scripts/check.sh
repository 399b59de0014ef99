#!/usr/bin/env bash
# The checks that need no build: the same by hand and before a change lands.
set -u
cd "$(dirname "$0")/.."
failed=0
complain() {
    echo "check: $1"
    sed 's/^/    /' | head -n 20
    failed=1
}

# Every check asks git for the files; without its answer there is nothing to check, and all is fine.
if [ -z "$(git ls-files src)" ]; then
    echo "check: git does not tell which files are the project's" >&2
    exit 1
fi

# Format. Only by the version that the project formats with: others differ in details.
if ! clang-format --version 2>/dev/null | grep -q 'version 14\.'; then
    complain "the format was not looked at: clang-format 14 is needed" </dev/null
else
    unformatted=$(git ls-files '*.cpp' '*.h' |
        xargs -r -P 2 -n 40 clang-format --dry-run 2>&1 | grep 'warning: code should' | cut -d: -f1 | sort -u)
    [ -n "$unformatted" ] && complain "not formatted (clang-format -i FILE)" <<<"$unformatted"
fi

# Layers: the program sees no toolkit and no system header.
layers=$(git grep -nE '^ *# *include *<(Q[A-Z]|mpv/|fluidsynth|curl/|pulse/|sqlite3|mpg123|sndfile|X11/|xcb/|sys/|unistd|fcntl|windows\.h|glib|gio)' \
    -- src | grep -vE '^src/(platform/[a-z]+/|main\.cpp)' ; \
    git grep -nE '^ *# *include *[<"]platform/(qt|curl|sound|picture|linux|registry|media)/' -- src/base src/playback src/playlist src/lyrics src/network src/settings src/ui src/platform/forms ':(glob)src/platform/*.h' src/velmora.cpp src/velmora.h; \
    git grep -nE '^ *# *if(n?def)?\b' -- src/base src/playback src/playlist src/lyrics src/network src/settings src/ui src/velmora.cpp src/velmora.h)
[ -n "$layers" ] && complain "the program's storey includes what it may not see" <<<"$layers"

# File sizes: no source file beyond 500 lines without a reason (scripts/long-files.txt names them).
long=$(git ls-files 'src/*.cpp' 'src/*.h' 'tools/*.cpp' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' |
    grep -vxF -f <(sed 's/ *#.*//' scripts/long-files.txt) | xargs -r wc -l | awk '$2 != "total" && $1 > 500 { print $2 ": " $1 " lines" }')
[ -n "$long" ] && complain "files of more than 500 lines" <<<"$long"

# Globals: nothing mutable at namespace scope in the program.
globals=$(git grep -nE '^(static |inline )?(std::[a-z_0-9:<>]+|int|bool|double|float|auto) [a-z_A-Z0-9]+( =|;|\{)' \
    -- src/playback src/playlist src/lyrics src/network src/settings src/ui src/velmora.cpp |
    grep -vE 'const(expr|init)? |\(')
[ -n "$globals" ] && complain "mutable globals in the program" <<<"$globals"

# Shell scripts parse.
for script in run test .ci/run scripts/*.sh bench/run; do
    [ -f "$script" ] || continue
    error=$(bash -n "$script" 2>&1) || complain "$script does not parse" <<<"$error"
done

[ "$failed" = 0 ] && echo "check: format, layers, sizes, globals and scripts are fine"
exit "$failed"
