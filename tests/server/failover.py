#!/usr/bin/env python3
"""Kills the primary of two PostgreSQL servers in the middle of writes and promotes its synchronous standby: what three
processes of the service had confirmed is there, once, and they go on by themselves.

    failover.py SERVER
"""

import hashlib
import http.client
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time

from postgresql import Server

SECONDS_BEFORE, SECONDS_BEHIND = 2, 4


def digest(text):
    return hashlib.md5(text.encode()).hexdigest().upper()


class Client(threading.Thread):
    """Makes one goal after the other, and knows which were confirmed and when."""

    source = "127.0.0.1"

    def __init__(self, port, number):
        super().__init__()
        self.port, self.login = port, f"{number}@example.org"
        self.confirmed, self.times, self.is_over = [], [], False
        assert self.post(f"p1=create-new-user&p2={self.login}&p3=x&p4=N&type=json") == '{"result":"OK"}'

    def post(self, body):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=40, source_address=(self.source, 0))
        connection.request("POST", "/tarvex/", body)
        return connection.getresponse().read().decode()

    def ask(self, kind, rest):
        return self.post(f"p1={kind}&p2={digest(self.login)}&p3={digest('x')}{rest}")

    def run(self):
        number = 0
        while not self.is_over:
            number += 1
            if self.ask("create-goal", f"&p4=n{number}&p5=1&p6=0&p7=1&p8=1") == "OK":
                self.confirmed.append(f"n{number}")
                self.times.append(time.monotonic())

    def names(self):
        return re.findall("<name>([^<]*)</name>", self.ask("get-goals", "&p4=1&p5=1"))


def conclude(clients):
    """Ends them and looks for what they had confirmed, which must be there once."""
    for client in clients:
        client.is_over = True
    for client in clients:
        client.join()
        names = client.names()
        lost, doubled = set(client.confirmed) - set(names), len(names) - len(set(names))
        pause = max(later - earlier for earlier, later in zip(client.times, client.times[1:]))
        print(f"{len(client.confirmed)} confirmed, {len(lost)} lost, {doubled} doubled; {pause:.1f} s without a write")
        assert client.confirmed and not lost and not doubled


def start_service(program, folder, address):
    process = subprocess.Popen([program, "serve", "--listen", "127.0.0.1:0", "--secret", f"{folder}/secret",
                                "--database", address], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    return process, int(re.search(r":(\d+)/", process.stdout.readline())[1])


def main():
    with tempfile.TemporaryDirectory() as folder, Server() as primary, Server(primary) as standby:
        subprocess.run(["psql", "-qd", primary.address(), "-c", "ALTER SYSTEM SET synchronous_standby_names = 'standby'",
                        "-c", "SELECT pg_reload_conf()"], check=True, stdout=subprocess.DEVNULL)
        address = f"postgresql://tarvex@/postgres?host={primary.folder},{standby.folder}"
        services = [start_service(sys.argv[1], folder, address) for _ in range(3)]
        clients = [Client(port, number) for number, (_, port) in enumerate(services)]
        for client in clients:
            client.start()
        time.sleep(SECONDS_BEFORE)
        killed = time.monotonic()
        primary.control("stop", "-m", "immediate")
        standby.control("promote")
        time.sleep(SECONDS_BEHIND)
        conclude(clients)
        assert all(client.times[-1] > killed + 1 for client in clients)
        for process, _ in services:
            process.send_signal(signal.SIGTERM)
            assert process.wait(timeout=10) == 0


if __name__ == "__main__":
    main()
