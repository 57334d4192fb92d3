#!/usr/bin/env bash
# The translator's tool on the example applications, on the session's
# display: check of both German dictionaries, render of the notes
# application's dialogs with its dictionary, then the notes application,
# which knows nothing of kticore, run as it comes and run by kttool
# translated, its texts printed each time; last a parameter tree copied
# from a text file into the registry and a compound file, and shown.
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

params="$build_dir/params_demo"
mkdir -p "$params"
printf '[\\]\r\nWidth=i640|Title=sNotes\r\n[\\Window]\r\nPosition=p10,20|Visible=f1\r\n' >"$params/settings.txt"
"$KT_ROOT/tools/lib/wine-run" reg delete 'HKCU\Software\kticore-demo' /f >/dev/null 2>&1 || true
printf '\n== kttool params: settings.txt into the registry, and from there to standard output\n'
cat "$params/settings.txt"
(cd "$params" && kttool params text:settings.txt 'reg:HKCU\Software\kticore-demo\Notes' &&
    kttool params 'reg:HKCU\Software\kticore-demo\Notes' -)
printf '\n== kttool storage --values of a compound file that settings.txt was copied into\n'
rm -f "$params/settings.cfd"
(cd "$params" && kttool params text:settings.txt stor:settings.cfd:Notes &&
    kttool storage settings.cfd --values)
