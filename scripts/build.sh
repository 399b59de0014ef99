# Where to build, and how. Sourced by ./run, ./test and bench/run from the project's folder.

# As a rule the folder "build" in the project. Where that cannot be written (a checkout that can only be
# read, or one that another user has built in) a folder of the user's own cache, one for each checkout.
# VELMORA_BUILD names another.
build_root() {
    local root=${VELMORA_BUILD:-$PWD/build}
    if [ -z "${VELMORA_BUILD:-}" ] && { ! mkdir -p "$root" || ! [ -w "$root" ]; } 2>/dev/null; then
        root=${XDG_CACHE_HOME:-$HOME/.cache}/velmora-build/$(printf %s "$PWD" | cksum | tr ' ' -)
        echo "Nothing can be written to $PWD/build: building in $root" >&2
    fi
    mkdir -p "$root"
    printf %s "$root"
}

# configure_and_build PRESET [TARGET...]: in the folder PRESET of $build.
configure_and_build() {
    local preset=$1 log
    shift
    log=$(mktemp)
    if ! cmake --preset "$preset" -B "$build/$preset" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
    cmake --build "$build/$preset" ${1:+--target "$@"}
}
