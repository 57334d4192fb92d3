"""Lists the document properties of a compound file as olefile reads them.

Usage: ole_properties.py FILE OUTPUT. OUTPUT gets one line "NAME=VALUE" for
each text property that olefile's summary-information reader finds, in the
order below, its bytes written as they are. A file that is no compound file
gives the single line "not a compound file". The output appears at once,
complete, by a rename.
"""
import os
import sys

import olefile

# olefile's names of the text properties of the two summary sets.
NAMES = ["title", "subject", "author", "keywords", "comments", "last_saved_by",
         "creating_application", "category", "company"]


def properties(name):
    if not olefile.isOleFile(name):
        return ["not a compound file"]
    with olefile.OleFileIO(name) as ole:
        found = ole.get_metadata()
        lines = []
        for key in NAMES:
            value = getattr(found, key)
            if isinstance(value, bytes):
                lines.append("%s=%s" % (key, value.decode("latin-1")))
        return lines


def main():
    name, output = sys.argv[1], sys.argv[2]
    partial = output + ".partial"
    with open(partial, "w", encoding="latin-1") as out:
        out.write("".join(line + "\n" for line in properties(name)))
    os.rename(partial, output)


main()
