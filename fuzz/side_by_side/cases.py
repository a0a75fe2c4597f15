"""What compare.py plays to both systems. See docs/windows.md for the differences."""
import struct

WEB = "www.norvane.example"

# Rows of the table in docs/windows.md that no case of seconds shows.
NOT_PLAYED = {
    "Waiting": "a minute and more",
    "Trust": "one store serves both here",
    "Permissions": "a file's mode in Wine says nothing about Windows",
    "Folders": "each host is given its own",
    "Paths": "the name of a user that Wine's code page lacks",
}


def text(value):
    return struct.pack("<I", len(value)) + b"".join(bytes([c, 255 if c > 127 else 0]) for c in value)


def item(title=b"Title", file=b"a.nvmap", first=1, second=2, short=b"short"):
    return text(title) + struct.pack("<i", first) + text(short) + text(file) + struct.pack("<i", second)


def shop(*items, count=None, skip=(), closing=7, status=0):
    count = len(items) if count is None else count
    words = struct.pack(f"<{2 + len(skip)}i", status, len(skip), *skip) + struct.pack("<i", count)
    return words + b"".join(items) + (struct.pack("<i", closing) if closing is not None else b"")


def http(body, status="200 OK", fields=""):
    return f"HTTP/1.1 {status}\r\nContent-Length: {len(body)}\r\n{fields}\r\n".encode() + body


def chunked(body, end=b"0\r\n\r\n", fields=""):
    return f"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n{fields}\r\n".encode() + b"%x\r\n" % len(body) + body + b"\r\n" + end


BODY = bytes(range(256)) * 2
SEARCH = ["search", "45.5", "6.25", "46", "7"]
DOWNLOAD = ["download", WEB, "/files/a b.map?x=1", "{here}/map", "-1"]
RANGE = ["range", WEB, "files/a.map", "16", "16"]

# Ways of a reply: name, the reply made from a body, and the difference that docs/windows.md names, to which calls.
WAYS = [
    ("whole", http, None),
    ("with fields", lambda body: http(body, fields="X: y\r\nSet-Cookie: a=b\r\nContent-Type: text/plain\r\n"), None),
    ("chunked", chunked, None),
    ("until the end", lambda body: b"HTTP/1.1 200 OK\r\n\r\n" + body, None),
    ("of HTTP/1.0", lambda body: b"HTTP/1.0 200 OK\r\n\r\n" + body, None),
    ("behind 100", lambda body: b"HTTP/1.1 100 Continue\r\n\r\n" + http(body), None),
    ("cut", lambda body: http(body).replace(b"Length: ", b"Length: 9")[:-5], None),
    ("longer than told", lambda body: b"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n" + body, "Broken replies: all"),
    ("empty", lambda body: http(b""), None),
    ("nothing", lambda body: b"", "Redirects and repeats: all"),
    ("404", lambda body: http(body, "404 Not Found"), None),
    ("500", lambda body: http(body, "500 Broken"), None),
    ("301", lambda body: http(body, "301 Moved", "Location: /other\r\n"), "Redirects and repeats: search"),
    ("204", lambda body: b"HTTP/1.1 204 None\r\n\r\n", None),
    ("a chunk cut", lambda body: chunked(body, end=b"")[:-9], "Broken replies: download"),
    ("no head", lambda body: body, "Broken replies: download range"),
]

CASES = [{"name": f"{call[0]} {way}", "calls": [call], "replies": [reply(body), http(body)],
          "differs": differs.split(":")[0] if differs and (call[0] in differs or "all" in differs) else None}
         for call, body in ((SEARCH, shop(item(), item(b"Two"))), (DOWNLOAD, BODY), (RANGE, BODY[:16]))
         for way, reply, differs in WAYS]


def case(name, *calls, **rest):
    CASES.append({"name": name, "calls": list(calls), **rest})


# Replies of the map shop.
for name, body in {
    "status": shop(item(), status=3),
    "skipped words": shop(item(), skip=(5, 6, 7)),
    "package": shop(item(file=b"x.NVPKG"), item(b"T" * 195, b"y.nvpkg"), item(b"T" * 300)),
    "letters": shop(item("Zürich".encode("cp1252"), b"\xe9.map")),
    "count below zero": shop(count=-1),
    "count too high": shop(item(), count=9),
    "long text": shop(item(), item(b"x" * 100_001), item()),
    "endless text": shop() [:-8] + struct.pack("<iI", 1, 0xFFFFFFFF) + b"abc",
    "cut in an item": shop(item(), item())[:-30],
    "without closing": shop(item(), closing=None),
    "zero within": shop(item(b"a\0b")),
}.items():
    case("map shop: " + name, SEARCH, replies=[http(body)])
case("map shop: cut within a letter", SEARCH, replies=[http(shop(item(b"T" * 198 + "é".encode())))],
     differs="Text in calls")
case("points out of range", ["search", "90.5", "0"], ["search", "0", "-400.5"])
case("no points", ["search"], replies=[http(shop())])

# Ranges and downloads.
for fields in ("Content-Range: bytes 16-31/99\r\n", "Content-Range: bytes 17-32/99\r\n", "",
               "Content-Type: multipart/byteranges; boundary=x\r\n"):
    case("206 " + fields.strip(), RANGE, replies=[http(BODY[:16], "206 Partial Content", fields)])
case("range of nothing", RANGE[:3] + ["0", "0"], replies=[http(b"")])
case("range far away", RANGE[:3] + ["9000000000", "16"], replies=[http(BODY[:16])])
case("stopped", DOWNLOAD[:4] + ["1"], replies=[http(BODY)])
case("over an old file", DOWNLOAD, replies=[http(BODY)], files={"downloads/map": b"old", "downloads/map.TMP": b"older"})
case("old file, refused", DOWNLOAD, replies=[http(BODY, "404 Not Found")], files={"downloads/map": b"old"})
case("into a folder", DOWNLOAD[:3] + ["{here}/folder", "-1"], replies=[http(BODY)])
case("into no folder", DOWNLOAD[:3] + ["{here}/none/map", "-1"], replies=[http(BODY)])
case("no host", ["download", "", "/x", "{here}/map", "-1"])

# Settings of every shape: who is signed in, and what the service is told.
TOKEN = http(struct.pack("<i", 0) + text(b"ticket 7"))
PASSWORD = b"Passwd=af510ac58c72fb3049c61de097247ba8\n"
for name, settings in [
    ("plain", b"UserID=ann\n" + PASSWORD),
    ("CR LF", b"UserID=ann\r\n" + PASSWORD.replace(b"\n", b"\r\n")),
    ("one line", b"UserID=a+b%20c&" + PASSWORD),
    ("blanks and comments", b"# x\n \t\n  UserID\t= ann \n" + PASSWORD),
    ("short password", b"UserID=ann\nPasswd=af51\n"),
    ("odd password", b"UserID=ann\nPasswd=af51xz0a+%\n"),
    ("no user", PASSWORD),
    ("zero bytes", b"UserID=a\0nn\n" + PASSWORD),
    ("letters", b"UserID=J%f6rg\n" + PASSWORD),
    ("cut escape", b"UserID=ann%4\n" + PASSWORD),
]:
    case("settings: " + name, ["session", "Atlas"], ["user"], ["token"], ["user"], replies=[TOKEN],
         files={"data/Atlas-Service/settings.ini": settings})
case("settings: end of text within", ["session", "Atlas"], ["user"], differs="Settings in calls",
     files={"data/Atlas-Service/settings.ini": b"# \x1a\nUserID=ann\n"})
case("settings: too large", ["session", "Atlas"], ["user"],
     files={"data/Atlas-Service/settings.ini": b"UserID=ann\n" + b"#" * (1 << 20)})
case("settings: of another product", ["session", "Atlas"], ["session", "At\\las"], ["user"],
     files={"data/Atlas-Service/settings.ini": b"UserID=ann\n", "data/At/las-Service/settings.ini": b"UserID=bob\n"})
case("device", ["session", "Atlas"], ["device"], differs="Device identifier in calls")
SIGNED_IN = {"data/Atlas-Service/settings.ini": b"UserID=ann\n" + PASSWORD}
for name, body in {"refused": struct.pack("<i", 3), "long": struct.pack("<i", 0) + text(b"x" * 20),
                   "19": struct.pack("<i", 0) + text(b"x" * 19), "cut": TOKEN[-9:-3], "empty": b""}.items():
    case("token: " + name, ["session", "Atlas"], ["token"], replies=[http(body)], files=SIGNED_IN)


# Catalogues. Which texts one has shows in the list of those that are missing: "Account Manager", the title of messages,
# is looked up at load. What it makes of a text shows in the titles alone.
USER = '[HKEY_CURRENT_USER\\Software\\Norvane]\n"Language"='
MACHINE = '[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvane]\n"inst_language"='
GERMAN = USER + '"Deutsch"\n'
CAPTION = b"Account Manager\tKonten\n"
LIST = {"documents/NVTranslation/": b""}
TOKEN_CALLS = [["session", "Atlas"], ["token"]]
SIGN_IN = b"Sign in to Your Account\t"


def catalogues(german, french=None):
    return {**LIST, "beside/nvsupport.Deutsch.txt": german, "beside/nvsupport.Francais.txt": french}


for name, catalogue in {
    "LF": CAPTION,
    "CR LF": CAPTION.replace(b"\n", b"\r\n"),
    "no end of line": CAPTION[:-1],
    "missing": None,
    "empty": b"",
    "lines without a tab": b"# Account Manager\n\nAccount Manager",
    "empty columns": b"\tAccount Manager\t\nAccount Manager\t",
    "tab in front": b"\t\t" + CAPTION,
    "behind an end of text": b"x\ty\n\x1a\n" + CAPTION,
    "CR within": b"Account\r Manager\r\tx",
    "quotes": b'"Account "Manager\t"',
    "cut escape": b"Account Manager\\\tx\n",
    "zero within": b"Account Manager\0\tx\n",
    "behind zeros": b"\0\0\0\t\0\n" + CAPTION,
    "mark of UTF-8": b"\xef\xbb\xbf" + CAPTION,
    "wide": CAPTION.decode().encode("utf-16"),
    "wide, odd": CAPTION.decode().encode("utf-16")[:-1] + b"x",
    "wide, cut": "Aŏcount Manager\u0109\tx\n".encode("utf-16"),
    "big-endian": b"\xfe\xff" + CAPTION.decode().encode("utf-16-be"),
    "long line": b"x" * 500_000 + b"\ty\n" + CAPTION,
    "too large": CAPTION + b"\n" * (32 << 20),
}.items():
    case("catalogue: " + name, registry=GERMAN, files=catalogues(catalogue))
for name, title, differs in [
    ("escapes", b'x\n"Sign in to Your Account"\t\\"Konto\\" ""a"" "b"' + b"\r" + b'\\c \\\\ %s %n\\' + b"\r\n", None),
    ("letters", b"Gr\xfc\xdfe\0x", None),
    ("letters of UTF-8", "Größe".encode(), "Text in calls"),
    ("long", b"x" * 9000, None),
]:
    case("title: " + name, *TOKEN_CALLS, keys=["Escape"], registry=GERMAN, files=catalogues(SIGN_IN + title),
         differs=differs)
case("language changed", *TOKEN_CALLS, ["registry", USER + '"Francais"\n'], ["token"], ["unload"], ["load", "{module}"],
     *TOKEN_CALLS, keys=["Escape"], registry=GERMAN, files=catalogues(SIGN_IN + b"eins\n", SIGN_IN + b"deux\n"))
REFUSED = {"keys": ["shift+Tab space", "a Tab b Tab b Tab Tab Tab d Return", "Return"],
           "replies": [http(struct.pack("<i", 77))]}
case("another format", *TOKEN_CALLS, registry=GERMAN, **REFUSED,
     files=catalogues(CAPTION + b"The server returned error code %d\t%s %n\n"))

# The registry, in the form of text that both systems read.
case("language: told to the service", *TOKEN_CALLS, registry=USER + r'"ü \"b\\c;d=%"' + "\n", **REFUSED)
for name, registry in {
    "unknown": USER + '"Klingon"\n',
    "another": USER + '"Francais"\n',
    "in a number": USER + "dword:75654400\n",
    "in bytes": USER + "hex:44,65,75,74,73,63,68\n",
    "in text without end": USER + "hex(1):44,65,75,74,73,63,68\n",
    "in parts": USER + 'hex(2):44,65,75,74,73,\\\n  63,68,00\n',
    "longest": USER + '"' + "x" * 260 + '"\n' + MACHINE + '"1031"\n',
    "too long": USER + '"' + "x" * 261 + '"\n' + MACHINE + '"1031"\n',
    "installed": USER + '""\n' + MACHINE + '" +1031x"\n',
    "installed in a number": MACHINE + "dword:31333031\n",
    "installed unknown": MACHINE + '"-1031"\n',
}.items():
    case("language: " + name, registry=registry, files=catalogues(CAPTION, b"x\ty\n"))
for name in "deutsch", r"x\\..\\nvsupport.Deutsch":
    case("language: " + name, registry=f'{USER}"{name}"\n', files=catalogues(CAPTION),
         differs="Names of files in documents/NVTranslation/nvsupport.txt")
case("settings: in small letters", ["session", "atlas"], ["user"], files=SIGNED_IN, differs="Names of files")
for name in "MAP", "map. ", "map?", "nul":
    case("into " + name, DOWNLOAD[:3] + ["{here}/" + name, "-1"], replies=[http(BODY)], files={"downloads/map": b"old"},
         differs="Names of files")

# States of the disk in which something cannot be read or written, by root either.
for name, files in {
    "folder for the list": {"documents/NVTranslation/nvsupport.txt/": b""},
    "file for the list's folder": {"documents/NVTranslation": b""},
    "file for the documents": {"documents": b""},
    "no documents": {"documents": None},
    "old list": {"documents/NVTranslation/nvsupport.txt": b"x" * 999},
    "folder for the catalogue": {**LIST, "beside/nvsupport.Deutsch.txt/": b""},
}.items():
    case("state: " + name, registry=GERMAN, files=files)
SIGNS_IN = {"keys": ["a Tab b Tab space Return"], "replies": [http(struct.pack("<ii", 0, 0)), TOKEN]}  # and saves that
WRITTEN = "Settings in data/Atlas-Service/settings.ini"
for name, files, differs in [
    ("no data", {"data": None}, WRITTEN),
    ("old settings", {"data/Atlas-Service/settings.ini": b"x=1\n" * 9}, WRITTEN),
    ("file for the data", {"data": b""}, None),
    ("file for the settings' folder", {"data/Atlas-Service": b""}, None),
    ("folder for the settings", {"data/Atlas-Service/settings.ini/": b""}, None),
]:
    case("state: " + name, *TOKEN_CALLS, ["user"], ["session", "Atlas"], ["user"], files=files, differs=differs,
         **SIGNS_IN)
case("state: name too long", ["session", "x" * 250], ["token"], ["user"], **SIGNS_IN)
