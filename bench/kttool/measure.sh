#!/usr/bin/env bash
# Times kttool's extract and check on a generated module of 10,000 strings
# and 500 dialogs (9 controls each, 5 of them with text), the size of a large
# application. Target: each under a second natively.
#
#   bench/kttool/measure.sh [BUILD_DIR]    (default build/native-release)
#
# The module is built with the mingw-w64 resource compiler and linker.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${1:-$root/build/native-release}
kttool=$build/bin/kttool
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

strings=10000
dialogs=500
{
    echo '#include <windows.h>'
    echo 'STRINGTABLE'
    echo 'BEGIN'
    for ((i = 0; i < strings; i++)); do
        echo "    $i \"Message $i: %d of %s items were processed\""
    done
    echo 'END'
    for ((d = 1; d <= dialogs; d++)); do
        cat <<DIALOG
$((1000 + d)) DIALOGEX 0, 0, 200, 120
STYLE DS_SETFONT | WS_POPUP | WS_CAPTION
CAPTION "Dialog $d"
FONT 8, "MS Shell Dlg"
BEGIN
    LTEXT "&Name of item $d:", -1, 5, 5, 60, 10
    EDITTEXT 101, 70, 5, 100, 12
    LTEXT "&Size of item $d:", -1, 5, 20, 60, 10
    EDITTEXT 102, 70, 20, 100, 12
    CHECKBOX "&Remember item $d", 103, 5, 40, 100, 10
    EDITTEXT 104, 70, 60, 100, 12
    DEFPUSHBUTTON "OK", IDOK, 40, 100, 50, 14
    PUSHBUTTON "Cancel", IDCANCEL, 100, 100, 50, 14
    EDITTEXT 105, 5, 80, 100, 12
END
DIALOG
    done
} > "$work/big.rc"
x86_64-w64-mingw32-windres "$work/big.rc" -O coff -o "$work/big.res.o"
x86_64-w64-mingw32-gcc -shared -nostdlib -s -Wl,--entry=0 -o "$work/big.dll" "$work/big.res.o"
echo "module: $(stat -c %s "$work/big.dll") bytes, $strings strings, $dialogs dialogs"

"$kttool" pseudo /dev/null -o /dev/null 2>/dev/null || true  # page the program in
TIMEFORMAT='%R s'
echo -n "kttool extract big.dll -o big.wld: "
time "$kttool" extract "$work/big.dll" -o "$work/big.wld"
"$kttool" pseudo "$work/big.wld" -o "$work/translated.wld"
echo "dictionary: $(grep -c '^"' "$work/translated.wld") lines of strings"
echo -n "kttool check translated.wld big.dll: "
time "$kttool" check "$work/translated.wld" "$work/big.dll"
