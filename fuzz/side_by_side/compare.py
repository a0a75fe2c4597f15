#!/usr/bin/env python3
"""Plays the same cases to the module here and to the DLL in Wine, and compares results, requests and files written.

usage: compare.py HOST MODULE HOST.exe DLL TLS_FOLDER      (started by scripts/test_windows.sh, in a network of its own)

A case is a state of disk and registry, a way of the server, the calls that the host makes and the keys that a user
presses in their dialogs. The two systems may differ only in what the table of docs/windows.md names, and only in the
cases that say so; where they no longer do, that fails, too.
"""
import itertools
import os
import pathlib
import re
import select
import shutil
import socket
import ssl
import subprocess
import sys
import tempfile
import threading
import time

from cases import CASES, NOT_PLAYED

PAGE = pathlib.Path(__file__).parents[2] / "docs/windows.md"
SECONDS = 60  # for an answer of a host
REGISTRY = "REGEDIT4\n\n[-HKEY_CURRENT_USER\\Software\\Norvane]\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvane]\n\n"


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


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout


def open_windows():
    return set(map(int, xdotool("search", "--onlyvisible", "--name", ".").split()))


def remove(path):
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


class System:
    """One of the two: a host that runs, a copy of its module, and the folders that they use."""

    def __init__(self, name, drive, work, server, command, modules, registry_file, importer, **folders):
        self.name, self.drive, self.registry_file, self.importer = name, drive, registry_file, importer
        self.folders = {"downloads": work / name / "downloads", "beside": work / name / "beside", **folders}
        self.folders["beside"].mkdir(parents=True)
        self.own = [shutil.copy(module, self.folders["beside"]) for module in modules]
        log = open(work / (name + ".log"), "w")
        self.host = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=log, encoding="latin-1")
        self.registry, self.device = None, b"not known yet"
        _, _, device, _ = self.play({"calls": [["session", "Atlas"], ["device"]]}, server)["calls"]
        self.device = bytes.fromhex(device)[::-1]

    def ask(self, words, keys=()):
        """The answer of the host; in front of it the titles of the windows in which the user presses the keys."""
        told = ""
        timer = threading.Timer(SECONDS, self.host.kill)
        timer.start()
        before = seen = open_windows() if keys else set()
        self.host.stdin.write("\t".join(words) + "\n")
        self.host.stdin.flush()
        # Each time that a window opens or closes; what is left at the end is cancelled.
        for pressed in itertools.chain(keys, itertools.repeat("Escape")) if keys else ():
            while not (answered := select.select([self.host.stdout], [], [], 0.1)[0]) and (now := open_windows()) == seen:
                pass
            if answered:
                break
            seen, newest = now, max(now - before, default=0)
            told += xdotool("getwindowname", newest).decode("latin-1")
            xdotool("windowfocus", "--sync", newest)
            time.sleep(0.3)  # the dialog takes the keyboard
            xdotool("key", *pressed.split())
        answer = self.host.stdout.readline()
        timer.cancel()
        if not answer:
            sys.exit(f"{self.name}: no answer to {words}")
        return told + answer.rstrip()

    def prepare(self, case):
        for folder in self.folders.values():
            for path in folder.iterdir() if folder.is_dir() else [folder]:
                if str(path) not in self.own:
                    remove(path)
            folder.mkdir(parents=True, exist_ok=True)
        for name, content in {"downloads/folder/": b"", **case.get("files", {})}.items():
            top, _, below = name.partition("/")
            path = self.folders[top] / below
            remove(path)
            if name.endswith("/"):
                path.mkdir(parents=True)
            elif content is not None:
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_bytes(content)

    def write_registry(self, text):
        if text != self.registry:
            self.registry = text
            self.registry_file.parent.mkdir(parents=True, exist_ok=True)
            self.registry_file.write_text(REGISTRY + text, encoding="latin-1")
            subprocess.run([*self.importer, self.drive + str(self.registry_file)], check=True)

    def play(self, case, server):
        self.prepare(case)
        self.write_registry(case.get("registry", ""))
        server.replies, server.requests = list(case.get("replies", [])), []
        here, module = self.drive + str(self.folders["downloads"]), self.drive + self.own[0]
        told = []
        for call in [["load", "{module}"], *case["calls"], ["unload"]]:
            if call[0] == "registry":
                self.write_registry(call[1])
                continue
            words = [word.replace("{here}", here).replace("{module}", module) for word in call]
            told.append(self.ask(words, case.get("keys", ()) if call[0] == "token" else ()))
        seen = {"calls": told, "requests": [r.replace(self.device, b"DEVICE").decode("latin-1") for r in server.requests]}
        for top, folder in self.folders.items():
            for path in (folder, *folder.rglob("*")):
                # Below Microsoft is what Wine's own DLLs write.
                if "Microsoft" not in path.parts and str(path) not in self.own:
                    content = path.read_bytes().decode("latin-1") if path.is_file() else "a folder"
                    seen[f"{top}/{path.relative_to(folder)}"] = content
        return seen


def documented():
    """The first column of the table of differences."""
    page = PAGE.read_text().split("## What differs from Linux")[1].split("\n\n")[1]
    return {line.split("|")[1].strip() for line in page.splitlines()[2:]}


def differences(one, other):
    return {key: f"    {key}\n      linux   {repr(one.get(key))[:300]}\n      windows {repr(other.get(key))[:300]}"
            for key in sorted(one.keys() | other.keys()) if one.get(key) != other.get(key)}


def main():
    host, module, windows_host, dll, tls_folder = sys.argv[1:]
    module = pathlib.Path(module)
    faults = 0
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        os.environ.update(XDG_DATA_HOME=name + "/data", XDG_DOCUMENTS_DIR=name + "/documents", LC_ALL="C.UTF-8")
        os.environ.update(XDG_CONFIG_HOME=name + "/config", XDG_CONFIG_DIRS=name + "/config")
        os.environ.pop("SSL_CERT_DIR", None)
        (profile,) = pathlib.Path(os.environ["WINEPREFIX"], "drive_c/users").glob("[!P]*")  # beside Public
        server = Server(tls_folder)
        linux = System("linux", "", work, server, [host], [module, *module.parent.glob("nvsupport-*.so")],
                       work / "config/norvane/registry.reg", ["true"], data=work / "data", documents=work / "documents")
        windows = System("windows", "Z:", work, server, ["wine", windows_host], [dll], work / "registry.reg",
                         ["wine", "regedit", "/S"], data=profile / "AppData/Local", documents=profile / "Documents")
        found = set()
        for case in CASES:
            apart = differences(linux.play(case, server), windows.play(case, server))
            named, _, what = (case.get("differs") or "").partition(" in ")
            found.add(named)
            if bool(apart) != bool(named) or what and [*apart] != [what]:
                faults += 1
                told = "differs" if apart else f"no longer differs: {named}"
                print(f"{case['name']}: {told}", *apart.values(), sep="\n")
        for system in (linux, windows):
            system.host.stdin.close()
            system.host.wait(SECONDS)
    unknown = (found - {""}) ^ (documented() - NOT_PLAYED.keys())
    if unknown:
        faults += 1
        print("docs/windows.md and the cases name different differences:", *sorted(unknown))
    print(f"{len(CASES)} cases, {faults} faults")
    sys.exit(faults != 0)


main()
