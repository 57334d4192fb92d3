"""Lists a compound file as an independent reader sees it.

Usage: ole_tree.py FILE OUTPUT [STREAM=HEX...]. Each STREAM named (a path
joined by "/") is first given the bytes HEX by olefile's writer, which keeps
a stream's size. OUTPUT gets one line per element, sorted by path: "storage
PATH" or "stream PATH HEX", names joined by "/", in UTF-8. A file that is no
compound file gives the single line "not a compound file". The output
appears at once, complete, by a rename.
"""
import os
import sys

import olefile


def tree(name):
    if not olefile.isOleFile(name):
        return ["not a compound file"]
    with olefile.OleFileIO(name) as ole:
        lines = []
        for path in ole.listdir(streams=True, storages=True):
            joined = "/".join(path)
            if ole.get_type(path) == olefile.STGTY_STORAGE:
                lines.append("storage " + joined)
            else:
                lines.append("stream %s %s" % (joined, ole.openstream(path).read().hex()))
        return sorted(lines)


def rewrite(name, changes):
    with olefile.OleFileIO(name, write_mode=True) as ole:
        for change in changes:
            stream, data = change.split("=", 1)
            ole.write_stream(stream, bytes.fromhex(data))


def main():
    name, output = sys.argv[1], sys.argv[2]
    if len(sys.argv) > 3:
        rewrite(name, sys.argv[3:])
    partial = output + ".partial"
    with open(partial, "w", encoding="utf-8") as out:
        out.write("".join(line + "\n" for line in tree(name)))
    os.rename(partial, output)


main()
