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

# Layers: the program, the control model, the contracts and the interpreter see no toolkit, no library
# and nothing of the system, by whatever header: of those in angle brackets only the ones named here,
# which deal in values and are the language's own.
values='algorithm|array|bit|bitset|cctype|charconv|chrono|cmath|compare|concepts|cstddef|cstdint|cstdio|cstdlib|cstring|ctime|deque|exception|functional|initializer_list|iterator|limits|list|map|memory|numbers|numeric|optional|queue|random|ranges|ratio|set|span|sstream|stack|stdexcept|string|string_view|system_error|tuple|type_traits|unordered_map|unordered_set|utility|variant|vector'
# What waits for a disk has a thread for it, and the interpreter reads a medium's first bytes.
aside='^src/(base/within_time\.(h|cpp)|platform/media/medium_file\.cpp):'
program=(src/base src/playback src/playlist src/lyrics src/network src/settings src/ui src/velmora.cpp src/velmora.h)
contracts=(src/platform/forms src/platform/media ':(glob)src/platform/*.h')
layers=$(git grep -nE '^ *# *include *<' -- "${program[@]}" "${contracts[@]}" | grep -vE "<($values)>|$aside" ; \
    git grep -nE '^ *# *include *"' -- "${program[@]}" "${contracts[@]}" | grep -vE '"(base|lyrics|network|platform|playback|playlist|settings|ui)/|"velmora\.h"' ; \
    git grep -nE '^ *# *include *[<"]platform/(qt|curl|sound|picture|linux|registry)/' -- "${program[@]}" "${contracts[@]}" ; \
    git grep -nE '^ *# *include *[<"]platform/media/' -- "${program[@]}" src/platform/forms ':(glob)src/platform/*.h' ; \
    git grep -nE '^ *# *if(n?def)?\b' -- "${program[@]}")
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
