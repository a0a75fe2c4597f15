#!/usr/bin/env python3
"""Plays the same cases to the module here and to the DLL in Wine, and compares results, requests and files written.

usage: compare.py HOST MODULE HOST.exe DLL TLS_FOLDER      (started by scripts/test_windows.sh, in a network of its own)

A case is a state of the disk, a way of the server and the calls that the host makes. The two systems may differ only in
what the table of docs/windows.md names, and only in the cases that say so; where they no longer do, that fails, too.
"""
import os
import pathlib
import re
import shutil
import socket
import ssl
import subprocess
import sys
import tempfile
import threading

from cases import CASES, NOT_PLAYED

PAGE = pathlib.Path(__file__).parents[2] / "docs/windows.md"
SECONDS = 60  # for an answer of a host


def read_head(incoming):
    head = b""
    for line in incoming:
        if line == b"\r\n":
            return head
        head += line
    return b""


class Server:
    """Answers each request with the next of `replies`, and keeps the connection where that tells its true length."""

    def __init__(self, tls_folder):
        self.replies, self.requests = [], []
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(tls_folder + "/server.pem", tls_folder + "/server.key")
        for port, tls in ((80, None), (443, context)):
            listener = socket.create_server(("127.0.0.1", port))
            threading.Thread(target=self.accept, args=(listener, tls), daemon=True).start()

    def accept(self, listener, tls):
        while True:
            connection = listener.accept()[0]
            threading.Thread(target=self.serve, args=(connection, tls), daemon=True).start()

    def serve(self, connection, tls):
        try:
            with tls.wrap_socket(connection, server_side=True) if tls else connection as stream:
                incoming = stream.makefile("rb")
                while head := read_head(incoming):
                    length = re.search(rb"(?mi)^content-length: *(\d+)", head)
                    self.requests.append(head + b"\r\n" + incoming.read(int(length[1]) if length else 0))
                    reply = self.replies.pop(0) if self.replies else b""
                    stream.sendall(reply)
                    told, _, body = reply.partition(b"\r\n\r\n")
                    if not told.startswith(b"HTTP/1.1 ") or f"Content-Length: {len(body)}".encode() not in told.split(b"\r\n"):
                        return
        except OSError:
            pass  # clients leave as they like


class System:
    """One of the two: a host that runs, its module, and the folders for its settings and downloads."""

    def __init__(self, name, drive, work, command, module, data):
        self.name, self.drive, self.module, self.data = name, drive, module, data
        self.downloads = work / name / "downloads"
        log = open(work / (name + ".log"), "w")
        self.host = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=log, encoding="latin-1")

    def ask(self, words):
        timer = threading.Timer(SECONDS, self.host.kill)
        timer.start()
        self.host.stdin.write("\t".join(words) + "\n")
        self.host.stdin.flush()
        answer = self.host.stdout.readline()
        timer.cancel()
        if not answer:
            sys.exit(f"{self.name}: no answer to {words}")
        return answer.rstrip()

    def prepare(self, case):
        for folder in (self.data, self.downloads):
            shutil.rmtree(folder, ignore_errors=True)
            folder.mkdir(parents=True)
        (self.downloads / "folder").mkdir()
        for name, content in case.get("files", {}).items():
            path = self.data / name if "/" in name else self.downloads / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)

    def play(self, case, server):
        self.prepare(case)
        server.replies, server.requests = list(case.get("replies", [])), []
        told = [self.ask(["load", self.drive + self.module])]
        for call in case["calls"]:
            told.append(self.ask([word.replace("{here}", self.drive + str(self.downloads)) for word in call]))
        self.ask(["unload"])
        seen = {"calls": told, "requests": [r.decode("latin-1") for r in server.requests]}
        for folder in (self.data, self.downloads):
            for path in folder.rglob("*"):
                if path.is_file() and "Microsoft" not in path.parts:  # where Wine keeps what its own DLLs write
                    seen[f"file {path.parent.name}/{path.name}"] = path.read_bytes().decode("latin-1")
        return seen


def documented():
    """The first column of the table of differences."""
    page = PAGE.read_text().split("## What differs from Linux")[1].split("\n\n")[1]
    return {line.split("|")[1].strip() for line in page.splitlines()[2:]}


def differences(one, other):
    return [f"    {key}\n      linux   {repr(one.get(key))[:300]}\n      windows {repr(other.get(key))[:300]}"
            for key in sorted(one.keys() | other.keys()) if one.get(key) != other.get(key)]


def main():
    host, module, windows_host, dll, tls_folder = sys.argv[1:]
    faults = 0
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        os.environ.update(XDG_DATA_HOME=name + "/data", LC_ALL="C.UTF-8")
        os.environ.pop("SSL_CERT_DIR", None)
        (profile,) = pathlib.Path(os.environ["WINEPREFIX"], "drive_c/users").glob("[!P]*")  # beside Public
        server = Server(tls_folder)
        linux = System("linux", "", work, [host], module, work / "data")
        windows = System("windows", "Z:", work, ["wine", windows_host], dll, profile / "AppData/Local")
        found = set()
        for case in CASES:
            apart = differences(linux.play(case, server), windows.play(case, server))
            named = case.get("differs")
            found.add(named)
            if bool(apart) != bool(named):
                faults += 1
                print(f"{case['name']}: " + ("differs" if apart else f"no longer differs: {named}"), *apart, sep="\n")
        for system in (linux, windows):
            system.host.stdin.close()
            system.host.wait(SECONDS)
    unknown = (found - {None}) ^ (documented() - NOT_PLAYED.keys())
    if unknown:
        faults += 1
        print("docs/windows.md and the cases name different differences:", *sorted(unknown))
    print(f"{len(CASES)} cases, {faults} faults")
    sys.exit(faults != 0)


main()
