#!/bin/sh
# A compound file that another program wrote: Debian's msibuild (msitools,
# on libgsf) makes an installer database at $1 and adds the stream "+-+"
# holding the 256 byte values in order. msibuild encodes names made of
# letters, digits, '.' and '_'; "+-+" keeps its name. Its summary
# information gets a subject and an author (msibuild takes its -s alone).
set -e
/usr/bin/python3 -c 'import sys; sys.stdout.buffer.write(bytes(range(256)))' > "$1.bytes"
rm -f "$1"
msibuild "$1" -s "Kitchen planner" "Jane Doe" ";1033" "{6F1D3A52-8C1E-4B7A-9A51-2C3D4E5F6A7B}"
msibuild "$1" -a +-+ "$1.bytes"
rm -f "$1.bytes"
