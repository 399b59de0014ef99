# The Debian packages that each job needs, and one function that installs what is missing.
# Sourced by ./run and ./test.

packages_run="libqt6widgets6 qt6-qpa-plugins qt6-translations-l10n libpulse0 libmpg123-0
 libsndfile1 libfluidsynth3 libmpv2 libcurl4 libsqlite3-0 libxcb-shape0 timgm6mb-soundfont fonts-liberation fonts-noto-cjk xdg-utils
 ca-certificates libmicrohttpd12 libtag1v5"

packages_build="g++ cmake ninja-build ccache pkg-config qt6-base-dev libmpv-dev libfluidsynth-dev
 libpulse-dev libmpg123-dev libsndfile1-dev libcurl4-openssl-dev libsqlite3-dev libxcb1-dev
 libxcb-shape0-dev libmicrohttpd-dev libtag1-dev"

# A screen, a window manager and a sound server for machines that have none.
packages_headless="xvfb openbox xdotool xclip x11-utils x11-xserver-utils imagemagick pulseaudio
 pulseaudio-utils xauth sqlite3 hsetroot"

packages_test="git libgtest-dev libgmock-dev clang clang-format clang-tidy libclang-rt-14-dev picom wmctrl
 trayer xsettingsd dbus at-spi2-core locales sox libsox-fmt-all ffmpeg lame flac python3 procps zlib1g-dev openssl
 strace dosfstools exfat-fuse exfatprogs bindfs"

packages_bench="libbenchmark-dev"

# Installs those of the named packages that are not there. Asks for nothing: uses sudo where this is
# not root, and says what is missing where neither works.
install_packages() {
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null | grep -qx installed ||
            missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing and neither root nor sudo is at hand: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    local log
    log=$(mktemp)
    if ! { retry "${as_root[@]}" apt-get update &&
        retry "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 30 "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

# Three tries: package mirrors drop connections now and then.
retry() {
    local attempt
    for attempt in 1 2 3; do
        "$@" && return 0
        [ "$attempt" -eq 3 ] || sleep $((attempt * 3))
    done
    return 1
}
