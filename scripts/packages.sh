# The Debian packages that each job needs, and one function that installs what is missing.
# Sourced by ./run, ./test and bench/run behind scripts/build.sh.

packages_run="libqt6widgets6 qt6-qpa-plugins qt6-translations-l10n libpulse0 libmpg123-0
 libsndfile1 libfluidsynth3 libmpv2 libcurl4 libsystemd0 libsqlite3-0 libxcb-shape0 timgm6mb-soundfont fonts-liberation fonts-noto-cjk xdg-utils
 ca-certificates libmicrohttpd12 libtag1v5"

packages_build="g++ cmake ninja-build ccache mold pkg-config qt6-base-dev libmpv-dev libfluidsynth-dev
 libpulse-dev libmpg123-dev libsndfile1-dev libcurl4-openssl-dev libsqlite3-dev libsystemd-dev libxcb1-dev
 libxcb-shape0-dev libmicrohttpd-dev libtag1-dev"

# A screen, a window manager and a sound server for machines that have none.
packages_headless="xvfb openbox xdotool xclip x11-utils x11-xserver-utils imagemagick pulseaudio
 pulseaudio-utils xauth sqlite3 hsetroot"

packages_test="git libgtest-dev libgmock-dev clang clang-format clang-tidy libclang-rt-14-dev picom wmctrl
 trayer xsettingsd dbus at-spi2-core python3-gi gir1.2-atspi-2.0 locales sox libsox-fmt-all ffmpeg lame flac python3 procps zlib1g-dev openssl
 playerctl libglib2.0-bin python3-dbusmock strace dosfstools exfat-fuse exfatprogs bindfs desktop-file-utils appstream man-db"

# Desktops that the walk of tests/desktops runs on: those of every run, and the others with the panels.
packages_desktop="xfwm4 sway xwayland"
packages_desktops="icewm i3-wm marco mate-settings-daemon-common mutter gnome-shell kwin-x11 kwin-wayland weston picom
 xfce4-panel lxqt-panel tint2"

# What tests/browser looks at the catalogue's pages with: large, and the tests go on without it.
packages_browser="chromium chromium-driver"

packages_bench="libbenchmark-dev libxcb-damage0-dev curl"
# The players that are measured beside this one.
packages_peers="audacious audacious-plugins qmmp mpv"

# What packages are built with.
packages_package="debhelper dpkg-dev fakeroot"
# And what looks at them.
packages_package_test="lintian blhc diffoscope-minimal libglib2.0-bin"

# Where another sound server already serves the desktop, pulseaudio is unpacked beside the build instead of being
# installed; these are what it needs then.
packages_beside_sound="libasound2 libcap2 libfftw3-single3 libltdl7 liborc-0.4-0 libsoxr0 libspeexdsp1
 libtdb1 libwebrtc-audio-processing1 libsndfile1 libpulse0"

# Installs those of the named packages that are not there, and never removes one. Uses sudo where this is not
# root, which may ask for a password, and says what is missing where neither works.
install_packages() {
    local missing=() name
    for name in "$@"; do
        is_installed "$name" || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if ! is_home_system; then
        echo "This is made for Debian 12; on this system what it needs is installed by hand (see scripts/packages.sh)." >&2
        return 0
    fi

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing and neither root nor sudo is at hand: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    if would_take_the_sound_away "${missing[@]}"; then
        local kept=()
        for name in "${missing[@]}"; do
            [ "$name" = pulseaudio ] || kept+=("$name")
        done
        unpack_sound_server || return 1
        # shellcheck disable=SC2086
        install_packages "${kept[@]}" $packages_beside_sound
        return
    fi
    echo "Installing: ${missing[*]}"
    local log
    log=$(mktemp)
    # Package mirrors drop connections now and then.
    if ! { "${as_root[@]}" apt-get -o Acquire::Retries=3 update &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o Acquire::Retries=3 \
            install -y --no-install-recommends --no-remove "${missing[@]}"; } >"$log" 2>&1; then
        tail -n 30 "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

is_installed() {
    dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed
}

is_home_system() {
    # shellcheck source=/dev/null
    (. /etc/os-release && [ "${ID:-}" = debian ] && [ "${VERSION_ID:-}" = 12 ]) 2>/dev/null
}

# Debian's pipewire-audio conflicts with pulseaudio: installing that one would remove the desktop's own.
would_take_the_sound_away() {
    local name
    for name in "$@"; do
        [ "$name" = pulseaudio ] || continue
        is_installed pipewire-audio || is_installed pipewire-alsa
        return
    done
    return 1
}

# A sound server for the tests and the demonstration alone, in $build/beside. Nobody else sees it.
unpack_sound_server() {
    local beside=$build/beside folder
    if [ ! -x "$beside/bin/pulseaudio" ]; then
        echo "Another sound server serves this desktop: pulseaudio is unpacked in $beside, not installed."
        folder=$(mktemp -d)
        if ! (cd "$folder" && apt-get -o Acquire::Retries=3 download pulseaudio >/dev/null &&
            dpkg-deb -x pulseaudio_*.deb root); then
            echo "pulseaudio could not be fetched." >&2
            rm -rf "$folder"
            return 1
        fi
        rm -rf "$beside"
        mkdir -p "$beside/bin"
        mv "$folder/root" "$beside/root"
        rm -rf "$folder"
        local libraries modules
        libraries=$(dirname "$(find "$beside/root" -name 'libpulsecore-*.so' | head -n 1)")
        modules=$(dirname "$(find "$beside/root" -name 'module-null-sink.so' | head -n 1)")
        printf '#!/bin/sh\nLD_LIBRARY_PATH="%s:%s" exec "%s" --dl-search-path="%s" "$@"\n' "$libraries" "$modules" \
            "$beside/root/usr/bin/pulseaudio" "$modules" >"$beside/bin/pulseaudio"
        chmod +x "$beside/bin/pulseaudio"
    fi
    export PATH=$beside/bin:$PATH
}
