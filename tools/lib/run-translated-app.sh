#!/usr/bin/env bash
# Shows the example application's main dialog on the session's display, first
# as it comes and then beside its German dictionary: prints its texts and
# saves a picture of it each time into the build tree.
# Usage: run-translated-app.sh WINDOWS_BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/common.sh"

build_dir=$(cd "$1" && pwd)
app_dir="$build_dir/translated_app"
kt_wine_environment "$build_dir"
# Wine leaves a window's caption to the window manager, and the display has
# none: for this program alone, Wine draws the frame itself, so that the
# picture shows the caption.
wine reg add 'HKCU\Software\Wine\AppDefaults\translated_app.exe\X11 Driver' \
    /v Decorated /d N /f >/dev/null 2>&1

for variant in plain german; do
    picture="$app_dir/main-$variant.png"
    case $variant in
        plain) printf '\n== The main dialog without a dictionary\n' ;;
        german) printf '\n== The main dialog with translated_app.wld and translated_app.dlg beside it\n' ;;
    esac
    (cd "$app_dir/$variant" && "$KT_ROOT/tools/lib/wine-run" translated_app.exe --snapshot "$picture")
    printf '   picture: %s\n' "$picture"
done
