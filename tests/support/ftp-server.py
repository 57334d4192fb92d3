#!/usr/bin/python3
"""A real FTP server on 127.0.0.1:21 for the URL file tests (Debian's pyftpdlib).

    ftp-server.py start DIR   serves DIR/root afresh; returns once the port answers
    ftp-server.py stop DIR    ends the server that was started for DIR

The user is "kt" with the password "secret", and may do everything except in
readonly/, where listing and reading is all. A failed login is answered at
once. Names travel in the ANSI code page of the clients (1252), which is how
WinInet sends them. While DIR/offline exists the server does not listen: a
server that has gone away. Port 21 is the machine's: a second server waits
for the first to end. A server nobody stops ends by itself after an hour.
"""
import fcntl
import logging
import os
import shutil
import signal
import socket
import subprocess
import sys
import time

ADDRESS = ("127.0.0.1", 21)
ANSI = "cp1252"
PORT_LOCK = "/tmp/kticore-ftp-21.lock"
START_SECONDS = 330
LIFETIME_SECONDS = 3600


def paths(directory):
    return {name: os.path.join(directory, name)
            for name in ("root", "offline", "server.pid", "server.log", "ready")}


def port_answers():
    try:
        with socket.create_connection(ADDRESS, timeout=2) as connection:
            return connection.recv(3) == b"220"
    except OSError:
        return False


def serve(directory):
    from pyftpdlib.authorizers import DummyAuthorizer
    from pyftpdlib.filesystems import AbstractedFS
    from pyftpdlib.handlers import FTPHandler
    from pyftpdlib.servers import FTPServer

    where = paths(directory)
    # Each turn of the loop below would announce the server again.
    logging.getLogger("pyftpdlib").addFilter(
        lambda record: "starting FTP server" not in record.getMessage())
    lock = open(PORT_LOCK, "w")
    fcntl.flock(lock, fcntl.LOCK_EX)

    authorizer = DummyAuthorizer()
    authorizer.add_user("kt", "secret", where["root"], perm="elradfmwMT")
    authorizer.override_perm("kt", os.path.join(where["root"], "readonly"), perm="elr",
                             recursive=True)

    class AnsiListing(AbstractedFS):
        def format_list(self, basedir, listing, ignore_err=True):
            for line in super().format_list(basedir, listing, ignore_err):
                yield line.decode("utf8").encode(ANSI, "replace")

    class Handler(FTPHandler):
        auth_failed_timeout = 0
        abstracted_fs = AnsiListing

        def decode(self, data):
            return data.decode(ANSI, "replace")

    Handler.authorizer = authorizer
    deadline = time.monotonic() + LIFETIME_SECONDS
    server = None
    while time.monotonic() < deadline:
        offline = os.path.exists(where["offline"])
        if server is None and not offline:
            server = FTPServer(ADDRESS, Handler)
            open(where["ready"], "w").close()
        elif server is not None and offline:
            server.close_all()
            server = None
        if server is None:
            time.sleep(0.05)
        else:
            server.serve_forever(timeout=0.05, blocking=False, handle_exit=False)


def start(directory):
    where = paths(directory)
    stop(directory)
    shutil.rmtree(directory, ignore_errors=True)
    os.makedirs(os.path.join(where["root"], "readonly"))
    with open(where["server.log"], "w") as log:
        server = subprocess.Popen([sys.executable, os.path.abspath(__file__), "serve", directory],
                                  stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                  start_new_session=True)
    with open(where["server.pid"], "w") as pid:
        pid.write(str(server.pid))
    deadline = time.monotonic() + START_SECONDS
    while time.monotonic() < deadline and server.poll() is None:
        if os.path.exists(where["ready"]) and port_answers():
            print("FTP server %d on %s:%d serving %s" % ((server.pid,) + ADDRESS + (where["root"],)))
            return 0
        time.sleep(0.1)
    stop(directory)
    with open(where["server.log"]) as log:
        sys.stderr.write(log.read())
    sys.stderr.write("no FTP server on %s:%d\n" % ADDRESS)
    return 1


def stop(directory):
    where = paths(directory)
    try:
        with open(where["server.pid"]) as pid:
            server = int(pid.read())
    except (OSError, ValueError):
        return 0
    try:
        os.kill(server, signal.SIGTERM)
        for _ in range(100):
            os.kill(server, 0)
            time.sleep(0.05)
        os.kill(server, signal.SIGKILL)
    except ProcessLookupError:
        pass
    os.remove(where["server.pid"])
    return 0


if __name__ == "__main__":
    command, directory = sys.argv[1], os.path.abspath(sys.argv[2])
    if command == "serve":
        serve(directory)
    else:
        sys.exit({"start": start, "stop": stop}[command](directory))
