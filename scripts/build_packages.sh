#!/usr/bin/env bash
# Builds the packages of this tree into a folder of their own: build_packages.sh FOLDER
#
# What is built is a copy of the files of the project, so that nothing lands in the tree and nothing in it
# but them gets into a package.
set -euo pipefail
out=$1
cd -- "$(dirname -- "$0")/.."
rm -rf -- "$out"
mkdir -p -- "$out/source"
if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
        [ -e "$file" ] && printf '%s\0' "$file"
    done | xargs -0 cp --parents -Pp -t "$out/source"
else
    find . -mindepth 1 -maxdepth 1 ! -name build ! -name .git -exec cp -Pp -r -t "$out/source" {} +
fi
cd -- "$out/source"
log=$out/build.log
# The packages are the same whoever builds them where: dates come from the changelog, modes from here.
umask 022
chmod -R u=rwX,go=rX .
if ! dpkg-buildpackage -us -uc -b >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "The whole log: $log" >&2
    exit 1
fi
cd ..
rm -rf source
