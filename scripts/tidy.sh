#!/usr/bin/env bash
# What clang-tidy has to say of the code, as an error: tidy.sh BUILD [COMMIT]
#
# BUILD is a folder that was configured with the preset tidy and has the target velmora_headers. With COMMIT only the
# files of src and tools that differ from it are looked at, whether committed since or not; without, all of them.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."
build=$1
if [ $# -gt 1 ]; then
    mapfile -t files < <(git diff --name-only --diff-filter=d "$2" -- 'src/*.cpp' 'tools/*.cpp')
else
    mapfile -t files < <(git ls-files 'src/*.cpp' 'tools/*.cpp')
fi
known=()
for file in "${files[@]}"; do
    # What only other builds compile is theirs to look at.
    grep -qF "\"file\": \"$PWD/$file\"" "$build/compile_commands.json" && known+=("$file")
done
[ ${#known[@]} -gt 0 ] || exit 0
echo "clang-tidy looks at ${#known[@]} files"
# Flags of the other compiler mean nothing to it, and nobody needs to hear what it counted in the headers of others.
printf '%s\0' "${known[@]}" | xargs -0 -n 2 -P "$(nproc)" clang-tidy -p "$build" --quiet \
    --extra-arg=-Wno-unknown-warning-option 2> >(grep -v '^[0-9]* warnings\{0,1\}.*generated\.$' >&2 || true)
