#!/usr/bin/env python3
"""Several clients use the account service at random while its processes, its database and its disk fail; a model says
what it may answer.

usage: play.py SECONDS SEED SERVICE_FOLDER      (started by scripts/service_model.sh)
"""
import collections
import contextlib
import faulthandler
import http.client
import os
import pathlib
import random
import re
import signal
import ssl
import struct
import subprocess
import sys
import threading
import time

from model import DONE, FAILED, NO_USER, Account, key

CLIENTS = 4
seconds, seed, folder = float(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
port = int((folder / "ports").read_text().split()[1])
database = os.environ.get("NV_SERVICE_DATABASE", "")
tls = ssl.create_default_context(cafile=str(folder / "ca.pem"))
tls.check_hostname = False  # the name is another one
events, counts = collections.deque(maxlen=20), collections.Counter()
end = time.monotonic() + seconds
whole = threading.Event()  # from then on the service has no reason to fail
wrong = threading.Event()


def tell(text):
    events.append(f"{time.monotonic() - end + seconds:7.2f} {text}")


def fail(text):
    if not wrong.is_set():
        wrong.set()
        print(f"seed {seed}: {text}", "the last events:", *events, sep="\n  ", flush=True)


def text(value):
    return struct.pack("<I", len(value)) + value.encode("utf-16-le")


def word(value):
    return struct.pack("<I", value)


class Client(threading.Thread):
    def __init__(self, number):
        super().__init__()
        self.number, self.dice = number, random.Random(f"{seed} {number}")
        self.users = [f"Client {number} user {i}" for i in range(6)]
        self.accounts = {user: Account() for user in self.users}
        self.tokens = ["1234567890abcdefghi"]

    def ask(self, verb, path, body=None):
        """The HTTP status and the body of the reply, or None where the service fails."""
        # An address of its own, so that the brake tells one from the other.
        source = f"127.0.{self.number + 1}.{self.dice.randrange(1, 250)}"
        connection = http.client.HTTPSConnection("127.0.0.1", port, timeout=30, context=tls, source_address=(source, 0))
        try:
            connection.request(verb, path, body)
            reply = connection.getresponse()
            status, content = reply.status, reply.read()
        except (OSError, http.client.HTTPException):
            status, content = 0, b""
        finally:
            connection.close()
        if status in (0, 500, 502, 503, 504):
            counts["failed"] += 1
            if whole.is_set():
                fail(f"status {status} to {verb} {path}, though nothing was broken")
            time.sleep(0.05)
            return None
        return status, content

    def operate(self, body):
        reply = self.ask("POST", "/cgi-bin/svcapp.cgi", body)
        return reply and (struct.unpack_from("<I", reply[1])[0], reply[1][4:])

    def check(self, user, what, answer, *arguments):
        tell(f"{what} {user} {arguments}: {answer}")
        counts[what] += answer is not None
        if not self.accounts[user].saw(answer, what, *arguments):
            fail(f"{what} {user} {arguments} gave {answer}")

    def write(self, user):
        """As the account rule allows it: case, blanks and punctuation do not count."""
        return "".join(self.dice.choice((c.lower(), c.upper(), c + "-")) for c in user)

    def password(self, user):
        if self.dice.random() < 0.08:
            return self.dice.choice(("short", "Wrong 123", "wrong 456"))
        return f"secret of {user[7:]}"

    def create(self, user):
        # The service takes the same account once more for a repeated request, but only for ten minutes.
        period = int(time.monotonic() // 500)
        mail = self.dice.choice((f"no mail {period}", f"{key(user)}.{period}@norvane.example", f" {key(user)}.{period}@NORVANE.example"))
        password = self.password(user)
        body = word(10) + text(self.write(user)) + text(password) + text("A name") + text("") + text(mail) + b"\1" + word(124) + text("English")
        reply = self.operate(body)
        self.check(user, "create", reply and reply[0], user, password, mail)

    def sign_in(self, user, password=None, computer=None):
        password = password or self.password(user)
        computer = self.dice.randrange(3) if computer is None else computer
        answer = self.operate(word(8) + text(self.write(user)) + text(password) + word(computer))
        if answer and answer[0] == FAILED:
            answer = FAILED
        elif answer:
            answer = answer[0], struct.unpack("<I", answer[1])[0] if answer[0] == DONE else None
        self.check(user, "sign_in", answer, password, computer)

    def name(self, user):
        password, computer = self.password(user), self.dice.randrange(3)
        reply = self.operate(word(9) + text(self.write(user)) + text(password) + text("Desk") + word(computer) + word(124) + word(1 << 28))
        self.check(user, "name", reply and reply[0], password, computer)

    def open(self, user):
        password = self.password(user)
        reply = self.operate(word(11) + text(self.write(user)) + text(password))
        token = reply[1][4:].decode("utf-16-le") if reply and reply[0] == DONE else ""
        if token:
            self.tokens.append(token)
        self.check(user, "open", reply and reply[0], password, token)

    def delete(self, user):
        """As an operator does it."""
        done = subprocess.run(["build/release/service/nvservice", "delete-account", self.write(user)], capture_output=True, text=True)
        answer = DONE if done.returncode == 0 else NO_USER if "no such account" in done.stderr else None
        self.check(user, "delete", answer)

    def page(self, user):
        token = self.dice.choice(self.tokens[-5:])
        verb = "POST" if self.dice.random() < 0.2 else "GET"
        reply = self.ask(verb, "/cgi-bin/svcuser.cgi?session=" + token, b"" if verb == "POST" else None)
        owners = [name for name in self.users if any(token in world.tokens for world in self.accounts[name].worlds)]
        owner = owners[0] if owners else user
        shown = re.search(rb"Signed in as <b>(.*?)</b>", reply[1]) if reply else None
        if shown and key(shown[1].decode()) != key(owner):
            fail(f"the page of {owner} is that of {shown[1]}")
        self.check(owner, "page" if verb == "GET" else "end", reply and reply[0], token)

    def run(self):
        ways = [self.delete] + [self.create] * 3 + [self.sign_in] * 3 + [self.name] * 2 + [self.open] * 2 + [self.page] * 3
        while time.monotonic() < end and not wrong.is_set():
            self.dice.choice(ways)(self.dice.choice(self.users))

    def look_back(self):
        """With nothing broken any more every account tells which of its worlds is true."""
        for user in self.users:
            for computer in range(3):
                self.sign_in(user, f"secret of {user[7:]}", computer)


def children(process):
    with contextlib.suppress(OSError):  # it went meanwhile
        return [int(child) for child in pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()]
    return []


def kill_a_process(dice):
    """One that answers requests, or as often one that starts these."""
    pools = children((folder / "pid").read_text().strip())
    workers = [worker for pool in pools for worker in children(pool)]
    victims = dice.choice((pools, workers))
    if not victims:
        return
    victim = dice.choice(victims)
    tell(f"kill {victim}")
    with contextlib.suppress(ProcessLookupError):  # it went meanwhile
        os.kill(victim, signal.SIGKILL)


def restart_database(dice):
    match = re.search(r"host=([^&]*)", database)
    if not match:
        return kill_a_process(dice)
    mode = dice.choice(("fast", "immediate"))
    tell("restart the database, " + mode)
    programs = sorted(pathlib.Path("/usr/lib/postgresql").glob("*/bin"))[-1]
    data = match[1] + "/data"
    user = ["setpriv", "--reuid", "nobody", "--regid", "nogroup", "--clear-groups"] if os.geteuid() == 0 else []
    subprocess.run([*user, programs / "pg_ctl", "-D", data, "-w", "-m", mode, "-l", match[1] + "/log", "-o",
                    f"-c listen_addresses='' -c unix_socket_directories='{match[1]}'", "restart"], check=True, cwd="/", stdout=subprocess.DEVNULL)


def fill_the_disk(dice):
    disk = folder / "disk"
    if not os.path.ismount(disk):
        return kill_a_process(dice)
    tell("the disk is full")
    with contextlib.suppress(OSError), open(disk / "filler", "wb", buffering=0) as filler:
        while True:
            filler.write(bytes(1024))
    time.sleep(dice.uniform(0.1, 0.6))
    (disk / "filler").unlink()
    tell("the disk has room")


def main():
    faulthandler.dump_traceback_later(seconds + 90, exit=True)  # a run that hangs says where
    dice = random.Random(seed)
    clients = [Client(number) for number in range(CLIENTS)]
    for client in clients:
        client.start()
    while time.monotonic() < end - 1 and not wrong.is_set():
        time.sleep(dice.uniform(0.3, 2))
        dice.choice((kill_a_process, restart_database, fill_the_disk))(dice)
    for client in clients:
        client.join()
    back = time.monotonic() + 30
    programs = ["/cgi-bin/svcapp.cgi", "/cgi-bin/svcuser.cgi"]
    while any(clients[0].ask("GET", program) is None for program in programs) and time.monotonic() < back:
        time.sleep(0.5)
    time.sleep(1)  # a process says for a second that the database failed a moment ago
    whole.set()
    looks = [threading.Thread(target=client.look_back) for client in clients]
    for look in looks:
        look.start()
    for look in looks:
        look.join()
    print(", ".join(f"{count} {what}" for what, count in sorted(counts.items())))
    sys.exit(wrong.is_set())


main()
