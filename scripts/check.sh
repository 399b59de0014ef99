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

# Layers. Each room of the house, and the rooms that it may include besides itself; nothing runs upward.
# docs/architecture.md draws the same.
read -r -d '' rooms <<'END'
base
forms              base
contracts          base forms
text               base contracts
program            base forms contracts
linux              base contracts text
registry           base contracts text linux
curl               base contracts text linux
bus                base contracts text linux
media              base contracts text
picture            base contracts media
sound/readers      base
sound/output       base media sound/readers
sound/device       base contracts media sound/output sound/readers
qt/screen          base forms contracts text
qt/paint           base forms contracts qt/screen
qt/scene           base forms contracts qt/screen qt/paint
qt/window          base forms contracts text qt/screen qt/paint qt/scene
qt/boxes           base forms contracts qt/screen qt/paint qt/scene qt/window
qt/system          base forms contracts text linux qt/screen qt/paint qt/scene qt/window qt/boxes
main               *
tools/skinc        base
tools/formc        base
tools/preview      base forms qt/paint qt/screen
tools/open         base contracts bus linux
tools/registry_tool base text linux registry
tools/catalogue    base contracts text linux registry tools/registry_tool
tools/demo_piece
END
# The program, the control model, the contracts and the interpreter see no toolkit, no library and nothing of the system,
# by whatever header: of those in angle brackets only the ones named here, which deal in values and are the language's
# own.
values='algorithm|array|bit|bitset|cctype|charconv|chrono|cmath|compare|concepts|cstddef|cstdint|cstdio|cstdlib|cstring|ctime|deque|exception|functional|initializer_list|iterator|limits|list|map|memory|numbers|numeric|optional|queue|random|ranges|ratio|set|span|sstream|stack|stdexcept|string|string_view|system_error|tuple|type_traits|unordered_map|unordered_set|utility|variant|vector'
# What waits for a disk has a thread for it, libraries are loaded by one road, and the interpreter reads a medium's first bytes.
aside='^src/(base/(within_time\.(h|cpp)|loaded_library\.cpp)|platform/backends/media/medium_file\.cpp):'
plain=(src/base src/playback src/playlist src/lyrics src/network src/settings src/ui src/velmora.cpp src/velmora.h
    src/platform/forms src/platform/contracts src/platform/backends/media)
layers=$(git grep -nE '^ *# *include *"' -- 'src/*.h' 'src/*.cpp' 'tools/*.h' 'tools/*.cpp' | awk -v rooms="$rooms" '
    function room(path) {
        if (path ~ /^src\/platform\/backends\//) {
            sub("^src/platform/backends/", "", path)
            return match(path, /^(qt|sound)\/[a-z]+\//) ? substr(path, 1, RLENGTH - 1) : substr(path, 1, index(path, "/") - 1)
        }
        if (path ~ /^src\/platform\//) { sub("^src/platform/", "", path); return substr(path, 1, index(path, "/") - 1) }
        if (path ~ /^src\/(playback|playlist|lyrics|network|settings|ui)\// || path ~ /^src\/velmora\./) return "program"
        if (path == "src/main.cpp") return "main"
        if (path ~ /^src\//) { sub("^src/", "", path); return substr(path, 1, index(path, "/") - 1) }
        match(path, /^tools\/[a-z_]+/); return substr(path, 1, RLENGTH)
    }
    BEGIN {
        count = split(rooms, lines, "\n")
        for (i = 1; i <= count; i++) {
            fields = split(lines[i], field, " ")
            known[field[1]] = 1
            for (j = 1; j <= fields; j++) may[field[1], field[j]] = 1
        }
    }
    {
        split($0, part, ":")
        from = room(part[1])
        match($0, /"[^"]+"/); name = substr($0, RSTART + 1, RLENGTH - 2)
        top = name; sub("/.*", "", top)
        to = ("tools/" top) in known ? "tools/" top : top == name && name != "velmora.h" ? from : room("src/" name)
        if (!(from in known)) print part[1] ":" part[2] ": stands in no room of the house"
        else if (!((from, to) in may) && !((from, "*") in may)) print part[1] ":" part[2] ": " from " includes " to " (" name ")"
    }'
    git grep -nE '^ *# *include *<' -- "${plain[@]}" | grep -vE "<($values)>|$aside"
    git grep -nE '^ *# *if(n?def)?\b' -- "${plain[@]}" ':!src/platform/backends')
[ -n "$layers" ] && complain "a room includes what it may not see" <<<"$layers"

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
