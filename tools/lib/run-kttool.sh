#!/usr/bin/env bash
# The translator's tool on the example applications, on the session's
# display: check of both German dictionaries, render of the notes
# application's dialogs with its dictionary, then the notes application,
# which knows nothing of kticore, run as it comes and run by kttool
# translated, its texts printed each time.
# Usage: run-kttool.sh WINDOWS_BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/common.sh"

build_dir=$(cd "$1" && pwd)
kttool="$build_dir/bin/kttool.exe"
notes="$build_dir/notes_app"
german="$build_dir/translated_app/german"
kt_wine_environment "$build_dir"

# A finding is kttool's status 1: shown, not a failure of the demo.
kttool() {
    local status=0
    "$KT_ROOT/tools/lib/wine-run" "$kttool" "$@" || status=$?
    printf '   (status %d)\n' "$status"
    [ "$status" -le 1 ]
}

printf '\n== kttool check of the first example application'"'"'s dictionary\n'
(cd "$german" && kttool check translated_app.wld translated_app.exe translated_panel.dll order_forms.dll)
printf '\n== kttool check of the notes application'"'"'s dictionary (its about box is written\n'
printf '   in the code, where check cannot see it)\n'
(cd "$notes" && kttool check notes_app.wld notes_app.exe notes_print.dll)
printf '\n== kttool render of the notes application'"'"'s dialogs in German\n'
(cd "$notes" && kttool render notes_app.exe notes_print.dll --wld notes_app.wld -o pictures)
printf '   pictures: %s\n' "$notes/pictures"
printf '\n== The notes application as it comes\n'
(cd "$notes" && "$KT_ROOT/tools/lib/wine-run" notes_app.exe --texts)
printf '\n== kttool run of the notes application with notes_app.wld\n'
(cd "$notes" && kttool run notes_app.exe --texts --wld notes_app.wld)
