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
    command -v xvfb-run >/dev/null || missing+=(xvfb xauth)  # a display for dialogs under Wine
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

# One wine server for the whole run (each process start would otherwise start
# its own), shut down when the calling script exits.
kt_wine_session() {
    kt_wine_environment "$1"
    if [ ! -f "$WINEPREFIX/system.reg" ]; then
        kt_say "Creating the Wine prefix $WINEPREFIX"
        wineboot -i >/dev/null 2>&1
    fi
    wineserver -p || true  # exits 2 when a server for this prefix is already running
    trap 'wineserver -k 2>/dev/null || true' EXIT
}
