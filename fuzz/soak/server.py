#!/usr/bin/env python3
"""The partner of the soak host: every reply is derived from its request, and many are spoilt.

usage: server.py SEED FOLDER   (started by scripts/soak.sh; ends with its standard input)

Prints its ports: two plain ones, and one with TLS. FOLDER holds key.pem and certificate.pem. How a request is spoilt follows from the seed
and the number that the request carries, so that a run can be repeated whatever its threads do.

GET /NUMBER/LENGTH              the first LENGTH bytes of the endless text "NUMBER.NUMBER. ...", on the second port
                                "NUMBER:NUMBER: ..."; a Range is honoured
POST /cgi-bin/mapstore2.cgi     NUMBER % 50 items that name the number; the number is the latitude of the first point
POST /cgi-bin/svcapp.cgi        the token "T" and the user ID, which is the number
GET /faults                     numbers of requests with a body that came twice, or over a connection that had idled too
                                long, a line each; FOLDER/idled grows whenever the host lets all of them idle for long
"""
import asyncio
import functools
import os
import random
import re
import socket
import ssl
import struct
import sys

seed, folder = sys.argv[1], sys.argv[2]
seen, faults = set(), []


def stretch(number, mark, start, end):
    unit = f"{number}{mark}".encode()
    first = start // len(unit)
    return (unit * ((end - 1) // len(unit) - first + 1))[start - first * len(unit) :][: end - start] if end > start else b""


def text(value):
    return struct.pack("<I", len(value)) + value.encode("utf-16-le")


def shop_reply(number):
    count = number % 50
    items = [
        text(f"{number} title {i}") + struct.pack("<i", i) + text(f"{number}") + text(f"maps/{number}/{i}.map") +
        struct.pack("<i", number) for i in range(count)
    ]
    return struct.pack("<3i", 0, 0, count) + b"".join(items) + struct.pack("<i", number)


class Request:
    """One request: its number, the whole reply (status line, extra fields, body) and the way it is spoilt."""

    def __init__(self, head, body, mark):
        self.mark = mark
        verb, self.path, _ = head.split("\r\n")[0].split(" ", 2)
        self.status, self.fields, self.body = "200 OK", "", b""
        if verb == "POST":
            self.answer_post(body)
        else:
            self.answer_get(re.search(r"(?mi)^range: *bytes=(\d+)-(\d+)", head))
        self.spoilt = self.random().choice(SPOILERS) if self.number else clean

    def random(self):
        return random.Random(f"{seed} {self.number}")

    def answer_post(self, body):
        if "mapstore2" in self.path:
            self.number = round(struct.unpack_from("<d", body, 12)[0] * 1e6)
            self.body = shop_reply(self.number)
        else:
            length = struct.unpack_from("<I", body, 4)[0]
            user = body[8 : 8 + 2 * length].decode("utf-16-le")
            self.number = int(user)
            self.body = struct.pack("<i", 0) + text("T" + user)
        if self.number in seen:
            faults.append(f"{self.number} came twice")
        seen.add(self.number)

    def answer_get(self, wanted):
        if self.path == "/faults":
            self.number, self.body = 0, "".join(f"{fault}\n" for fault in faults).encode()
            return
        number, length = (int(part) for part in self.path.strip("/").split("/"))
        self.number, start, end = number, 0, length
        if wanted:
            start, end = int(wanted[1]), min(int(wanted[2]) + 1, length)
            self.status, self.fields = "206 Partial Content", f"Content-Range: bytes {start}-{end - 1}/{length}\r\n"
        self.body = stretch(number, self.mark, start, end)

    def head(self, length=None, fields=""):
        length = len(self.body) if length is None else length
        return f"HTTP/1.1 {self.status}\r\nContent-Length: {length}\r\n{self.fields}{fields}\r\n".encode()

    def whole(self):
        return self.head() + self.body


# The ways to spoil a reply. Each writes it and returns true if the connection is to be kept.
async def clean(request, out):
    out.write(request.whole())
    return True


# At once: a second reply that comes when the next request is on its way cannot be told from the reply to that.
async def sent_twice(request, out):
    out.write(request.whole() * 2)
    return True


async def longer_than_told(request, out):
    out.write(request.head(len(request.body) // 2) + request.body)
    return True


async def followed_by_another(request, out):
    out.write(request.whole() + b"HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\nanother")
    return True


async def cut_short(request, out):
    out.write(request.head() + request.body[: len(request.body) // 2])
    return False


async def closed_late(request, out):
    out.write(request.whole())
    await out.drain()
    await asyncio.sleep(0.02)
    return False


async def idle_then_408(request, out):
    out.write(request.whole())
    await out.drain()
    await asyncio.sleep(0.02)
    out.write(b"HTTP/1.1 408 Request Timeout\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngone")
    return False


async def behind_1xx(request, out):
    out.write(b"HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n" + request.whole())
    return True


async def reset(request, out):
    out.write(request.whole()[: request.random().randrange(len(request.whole()))])
    await out.drain()
    sock = out.get_extra_info("socket")
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    out.transport.abort()
    return False


async def dripping(request, out):
    data = request.whole()
    for at in range(0, min(len(data), 400), 40):
        out.write(data[at : at + 40])
        await out.drain()
        await asyncio.sleep(0.002)
    out.write(data[400:])
    return True


def chunks(request, end):
    body, step = request.body, 1 + request.random().randrange(5000)
    parts = [body[at : at + step] for at in range(0, len(body), step)]
    coded = b"".join(f"{len(part):x}\r\n".encode() + part + b"\r\n" for part in parts)
    head = f"HTTP/1.1 {request.status}\r\nTransfer-Encoding: chunked\r\n{request.fields}\r\n".encode()
    return head + coded + end


async def chunked(request, out):
    out.write(chunks(request, b"0\r\n\r\n"))
    return True


async def chunked_and_more(request, out):
    out.write(chunks(request, b"0\r\n\r\n") + request.body)
    return True


async def chunked_cut(request, out):
    out.write(chunks(request, b""))
    return False


async def until_close(request, out):
    out.write(f"HTTP/1.1 {request.status}\r\n{request.fields}\r\n".encode() + request.body)
    return False


async def redirected(request, out):
    out.write(b"HTTP/1.1 302 Found\r\nLocation: /1/100000\r\nContent-Length: 0\r\n\r\n")
    return True


async def elsewhere(request, out):
    if request.fields:  # a range, but not the one that was asked for
        request.fields = request.fields.replace("bytes ", "bytes 1")
        request.body = b"?" * len(request.body)
    out.write(request.whole())
    return True


async def stalled(request, out):
    await asyncio.sleep(0.3)
    out.write(request.whole())
    return True


async def silent_close(request, out):
    return False


async def no_head(request, out):
    out.write(request.body or b"-")
    return False


SPOILERS = [clean] * 24 + [
    sent_twice, longer_than_told, followed_by_another, cut_short, closed_late, idle_then_408, behind_1xx, reset, dripping,
    chunked, chunked_and_more, chunked_cut, until_close, redirected, elsewhere, stalled, silent_close, no_head,
]


async def serve(incoming, out, mark="."):
    try:
        kept, last_idled = True, None
        while kept:
            head = (await incoming.readuntil(b"\r\n\r\n")).decode("latin-1")
            length = re.search(r"(?mi)^content-length: *(\d+)", head)
            request = Request(head, await incoming.readexactly(int(length[1])) if length else b"", mark)
            idled = os.path.getsize(folder + "/idled")
            if length and last_idled not in (None, idled):
                faults.append(f"{request.number} came over a connection that had idled")
            last_idled = idled
            kept = await request.spoilt(request, out)
            await out.drain()
    except (asyncio.IncompleteReadError, OSError, ssl.SSLError):
        pass  # clients leave as they like
    out.close()


async def main():
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(folder + "/certificate.pem", folder + "/key.pem")
    plain = await asyncio.start_server(serve, "127.0.0.1", 0)
    moved = await asyncio.start_server(functools.partial(serve, mark=":"), "127.0.0.1", 0)
    secure = await asyncio.start_server(serve, "127.0.0.1", 0, ssl=context)
    print(*(server.sockets[0].getsockname()[1] for server in (plain, moved, secure)), flush=True)
    await asyncio.get_running_loop().run_in_executor(None, sys.stdin.read)


asyncio.run(main())
