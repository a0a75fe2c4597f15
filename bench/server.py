#!/usr/bin/env python3
"""The server of the web benchmarks: HTTP/1.1 with kept connections, plain and over TLS, and the same behind relays.

usage: server.py HOST DELAY FOLDER   (started by the benchmark programs; ends with its standard input)

The relays hold every byte back by DELAY milliseconds each way and let a connection count as open after one round trip.
Prints the ports: plain, TLS, plain behind the relay, TLS behind the relay. FOLDER/trust.pem is the system's trust
store with the server's certificate in it.

GET /N                         N bytes; a Range is honoured
POST /cgi-bin/mapstore2.cgi    as many items as the first longitude tells, in thousands
POST /protobuf                 the same items as a protobuf message
POST, any other path           the reply of a token exchange, which the shorter ones of the others begin like
"""
import functools
import http.server
import os
import queue
import re
import socket
import ssl
import struct
import subprocess
import sys
import threading
import time

BLOCK = os.urandom(1 << 20)


def items(count):
    for i in range(count):
        yield f"Hiking map {i}", i, "A map of the hills", f"maps/region/{i}.nvpkg", i


def text(value):
    return struct.pack("<I", len(value)) + value.encode("utf-16-le")


@functools.lru_cache
def search_reply(count):
    records = [text(a) + struct.pack("<i", b) + text(c) + text(d) + struct.pack("<i", e) for a, b, c, d, e in items(count)]
    return struct.pack("<3i", 0, 0, count) + b"".join(records) + struct.pack("<i", 0)


def varint(value):
    out = bytearray()
    while value > 127:
        out.append(value & 127 | 128)
        value >>= 7
    return bytes(out) + bytes([value])


@functools.lru_cache
def protobuf_reply(count):
    def field(number, value):
        if isinstance(value, int):
            return varint(number << 3) + varint(value)
        return varint(number << 3 | 2) + varint(len(value)) + value.encode()

    records = [b"".join(field(i + 1, v) for i, v in enumerate(item)) for item in items(count)]
    return b"".join(varint(1 << 3 | 2) + varint(len(record)) + record for record in records)


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True

    def log_message(self, *_):
        pass

    def head(self, size, status=200):
        self.send_response(status)
        self.send_header("Content-Length", str(size))
        self.end_headers()

    def do_GET(self):
        size = int(self.path.strip("/"))
        wanted = re.match(r"bytes=(\d+)-(\d+)", self.headers.get("Range", ""))
        size = int(wanted[2]) - int(wanted[1]) + 1 if wanted else size
        self.head(size, 206 if wanted else 200)
        for at in range(0, size, len(BLOCK)):
            self.wfile.write(BLOCK[: size - at])

    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        reply = struct.pack("<2i", 0, 0) + text("token")
        if self.path in ("/cgi-bin/mapstore2.cgi", "/protobuf"):
            count = round(struct.unpack_from("<d", body, 20)[0] * 1000)
            reply = protobuf_reply(count) if self.path == "/protobuf" else search_reply(count)
        self.head(len(reply))
        self.wfile.write(reply)


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, *_):  # clients leave as they like
        pass


def serve(context=None):
    server = Server(("127.0.0.1", 0), Handler)
    if context:
        server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


def pump(source, sink, delay, opened):
    waiting = queue.Queue()

    def send():
        try:
            while True:
                due, data = waiting.get()
                time.sleep(max(0, due - time.monotonic()))
                if not data:
                    return sink.shutdown(socket.SHUT_WR)
                sink.sendall(data)
        except OSError:
            pass

    threading.Thread(target=send, daemon=True).start()
    data = b"-"
    while data:
        try:
            data = source.recv(1 << 16)
        except OSError:
            data = b""
        waiting.put((max(time.monotonic(), opened) + delay, data))


def relay(port, delay):
    listener = socket.create_server(("127.0.0.1", 0), backlog=64)

    def accept():
        while True:
            client = listener.accept()[0]
            server = socket.create_connection(("127.0.0.1", port))
            for end in (client, server):
                end.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            for ends in ((client, server, delay, time.monotonic() + 2 * delay), (server, client, delay, 0)):
                threading.Thread(target=pump, args=ends, daemon=True).start()

    threading.Thread(target=accept, daemon=True).start()
    return listener.getsockname()[1]


def tls_context(host, folder):
    key, certificate = folder + "/key.pem", folder + "/certificate.pem"
    command = "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2".split()
    command += ["-subj", "/CN=" + host, "-addext", "subjectAltName=DNS:" + host, "-keyout", key, "-out", certificate]
    subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
    with open(folder + "/trust.pem", "w") as trust:
        for path in ("/etc/ssl/certs/ca-certificates.crt", certificate):
            trust.write(open(path).read() if os.path.exists(path) else "")
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    return context


def main():
    host, delay, folder = sys.argv[1], float(sys.argv[2]) / 1000, sys.argv[3]
    plain, tls = serve(), serve(tls_context(host, folder))
    print(plain, tls, relay(plain, delay), relay(tls, delay), flush=True)
    sys.stdin.read()


main()
