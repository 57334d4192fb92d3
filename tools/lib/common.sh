# Shared by the project's commands: prerequisites, builds and the Wine session.
# Sourced, not run.

KT_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

kt_say() { printf '\n### %s\n' "$*"; }

# Installs the Debian packages that are missing, and only those: a machine that
# has everything pays one look per tool.
kt_prerequisites() {
    local missing=()
    command -v cmake >/dev/null || missing+=(cmake)
    command -v g++ >/dev/null || missing+=(g++)
    command -v make >/dev/null || missing+=(make)
    command -v x86_64-w64-mingw32-g++-posix >/dev/null || missing+=(g++-mingw-w64-x86-64)
    [ -x /usr/lib/wine/wine64 ] || missing+=(wine wine64)
    [ -f /usr/src/googletest/CMakeLists.txt ] || missing+=(googletest)
    command -v Xvfb >/dev/null || missing+=(xvfb)
    local extra
    for extra in "$@"; do
        dpkg-query -W -f='${Status}' "$extra" 2>/dev/null | grep -q 'ok installed' || missing+=("$extra")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    kt_say "Installing ${missing[*]}"
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    "${sudo[@]}" apt-get update -q
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q "${missing[@]}"
}

# Configures and builds one preset.
kt_build() {
    local preset=$1
    kt_say "Building preset $preset"
    cmake --preset "$preset" -S "$KT_ROOT" >/dev/null
    cmake --build --preset "$preset" -j "$(nproc)"
}

# Wine with a prefix inside the build tree, quiet, without the .NET and HTML
# engines' installers.
kt_wine_environment() {
    export WINEPREFIX="$1/wineprefix"
    export WINEDEBUG=-all
    export WINEDLLOVERRIDES="mscoree,mshtml="
}

# A virtual display for the run, unless there is a display already: the
# tests make real dialogs, and Wine's desktop takes the display of the first
# process that needs one, so it must be there before any Wine process starts.
KT_XVFB_PID=
kt_display() {
    [ -z "${DISPLAY:-}" ] || return 0
    local number=90
    while [ -e "/tmp/.X$number-lock" ] || [ -e "/tmp/.X11-unix/X$number" ]; do
        number=$((number + 1))
    done
    Xvfb ":$number" -nolisten tcp >/dev/null 2>&1 &
    KT_XVFB_PID=$!
    local wait
    for wait in $(seq 50); do
        [ -e "/tmp/.X11-unix/X$number" ] && break
        sleep 0.1
    done
    export DISPLAY=":$number"
}

# One wine server for the whole run (each process start would otherwise start
# its own), shut down with the display when the calling script exits.
kt_wine_session() {
    kt_wine_environment "$1"
    kt_display
    if [ ! -f "$WINEPREFIX/system.reg" ]; then
        kt_say "Creating the Wine prefix $WINEPREFIX"
        wineboot -i >/dev/null 2>&1
    fi
    wineserver -p || true  # exits 2 when a server for this prefix is already running
    trap 'wineserver -k 2>/dev/null || true; [ -z "$KT_XVFB_PID" ] || kill "$KT_XVFB_PID" 2>/dev/null || true' EXIT
}
