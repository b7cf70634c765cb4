#!/usr/bin/env python3
"""Three processes of the service on one PostgreSQL server behind HAProxy, of which one after the other is killed, frozen or
ended while clients save: what was confirmed is there, once.

    processes.py SERVER [ROUNDS]
"""

import pathlib
import random
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path[:0] = [str(ROOT / "tests/server"), str(ROOT / "tools")]
from desktop import begin  # noqa: E402
from failover import Client  # noqa: E402
from ports import free_ports  # noqa: E402
from postgresql import Server  # noqa: E402

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
ROUNDS = int(sys.argv[2]) if len(sys.argv) > 2 else 6
HERE = "127.0.0.1"
KILLED, FROZEN, DRAINED = "killed", "frozen", "drained"


class Process:
    def __init__(self, port, *installation):
        self.command = [PROGRAM, "serve", "--listen", f"{HERE}:{port}", "--trusted-proxy", HERE, *installation]
        self.start()

    def start(self):
        self.child = begin(self.command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.child.stdout.readline()

    def end(self, sent):
        self.child.send_signal(sent)
        return self.child.wait(timeout=20)


def start_haproxy(folder, port, processes):
    """The recipe, but for users and ports, with a third process; a freeze is to be noticed soon."""
    text = re.sub("^ *(user|group) .*\n", "", (ROOT / "packaging/front/haproxy.cfg").read_text(), flags=re.M)
    for old, new in {":80\n": f"{HERE}:{port}\n", "8717\n": f"{processes[0]}\n", "inter 2s": "inter 200ms",
                     "8727\n": f"{processes[1]}\n    server three {HERE}:{processes[2]}\n"}.items():
        assert old in text, f"the recipe holds no {old!r}"
        text = text.replace(old, new)
    file = pathlib.Path(folder, "haproxy.cfg")
    file.write_text(text)
    program = shutil.which("haproxy") or "/usr/sbin/haproxy"
    proxy = begin([program, "-db", "-f", file], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    while True:
        try:
            socket.create_connection((HERE, port)).close()
            return proxy
        except OSError:
            time.sleep(0.05)


class Saver(Client):
    """From an address of its own, so that each may have another process."""

    def __init__(self, port, number):
        self.source = f"127.0.0.{number + 2}"
        self.unanswered = 0
        super().__init__(port, number)

    def post(self, body):
        try:
            return super().post(body)
        except OSError:
            self.unanswered += 1
            return ""


def main():
    happened = dict.fromkeys((KILLED, FROZEN, DRAINED), 0)
    lost_answers = dict.fromkeys(happened, 0)
    with tempfile.TemporaryDirectory() as folder, Server() as database:
        port, *ports = free_ports(4)
        installation = "--secret", f"{folder}/secret", "--database", database.address()
        processes = [Process(own, *installation) for own in ports]
        proxy = start_haproxy(folder, port, ports)
        savers = [Saver(port, number) for number in range(6)]
        for saver in savers:
            saver.start()
        for number in range(ROUNDS):
            process, what = processes[number % 3], (KILLED, FROZEN, DRAINED)[number // 3 % 3]
            time.sleep(random.uniform(0.3, 1))
            before = sum(saver.unanswered for saver in savers)
            if what == FROZEN:
                process.child.send_signal(signal.SIGSTOP)
                time.sleep(2)
                process.child.send_signal(signal.SIGCONT)
            else:
                process.end(signal.SIGKILL if what == KILLED else signal.SIGTERM)
                time.sleep(0.5)
                process.start()
            time.sleep(1)
            happened[what] += 1
            lost_answers[what] += sum(saver.unanswered for saver in savers) - before
        for saver in savers:
            saver.is_over = True
        for saver in savers:
            saver.join()
        confirmed = lost = doubled = 0
        for saver in savers:
            names = saver.names()
            confirmed += len(saver.confirmed)
            lost += len(set(saver.confirmed) - set(names))
            doubled += len(names) - len(set(names))
        for process in processes:
            assert process.end(signal.SIGTERM) == 0
        proxy.terminate()
        proxy.wait()
        told = ", ".join(f"{count} {what} ({lost_answers[what]} requests without an answer)"
                         for what, count in happened.items())
        print(f"{told}: {confirmed} confirmed, {lost} lost, {doubled} doubled")
        sys.exit(bool(lost or doubled or confirmed < 10 * ROUNDS))


if __name__ == "__main__":
    main()
