#!/usr/bin/env python3
"""Runs the service and bare servers in turn under the same load and prints, as JSON, the medians of what they did.

    bench/server.py FOLDER SERVER     where the programs of the benchmark are; databases are made there too

Servers run on one core and their clients on another. Where the processor's time is compared, it is that of the
server's whole process: on a busy machine that holds better than the time on the clock.
"""

import collections
import contextlib
import hashlib
import json
import os
import pathlib
import re
import resource
import shutil
import socket
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import threading
import time

FOLDER, SERVER = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
PEER, LOAD = FOLDER / "bench-server-peer", FOLDER / "bench-server-load"
CORES = sorted(os.sched_getaffinity(0))
SERVER_CORE, CLIENT_CORE = CORES[0], CORES[-1]

ROUNDS = 9  # short ones: what else the machine does then meets both sides
NAME = "A goal as people write them, a line"
GOALS_OF_PLACE = 20

figures = collections.defaultdict(lambda: collections.defaultdict(list))


def note(name, **values):
    for key, value in values.items():
        figures[f"server/{name}"][key].append(value)


# What clients send

def digest(text):
    return hashlib.md5(text.encode()).hexdigest().upper()


def request(kind, account, *fields):
    password = digest("wheel of life")  # of the sample account, which all others here are made after
    return "&".join([f"p1={kind}", f"p2={digest(f'account {account}')}", f"p3={password}",
                     *(f"p{number}={field}" for number, field in enumerate(fields, 4))])


def read(account, set_id=1, area_id=1):
    return request("get-goals", account, set_id, area_id)


def save(account, count, name=NAME):
    goal = f"name:{name};priority:5;checked:0;setsId:1;areaId:1;{{_end_}}"
    return request("create-some-goals", account, goal * count)


def delete(account, ids):
    return request("delete-some-goals", account, "".join(f"{goal};" for goal in ids))


# Servers and load

def move_to_server_core():
    os.sched_setaffinity(0, {SERVER_CORE})


def move_to_all_cores():
    os.sched_setaffinity(0, CORES)


class Server:
    """A process on the servers' core that says where it listens."""

    def __init__(self, *command, move=move_to_server_core):
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, preexec_fn=move)
        self.port = int(re.search(rb":(\d+)/", self.process.stdout.readline()).group(1))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()

    def cpu(self):
        return time.clock_gettime((~self.process.pid << 3) | 2)  # the clock of another process, all of its threads

    def kib(self):
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmRSS:\s+(\d+)", status).group(1))


def service(database, address=None, **options):
    return Server(SERVER, "serve", "--listen", "127.0.0.1:0", *of_database(database, address), **options)


def anew(bodies):
    """The same requests in so many spellings that no answer is still known when its own comes again."""
    return [f"{body}&p9={number}" for number in range(1500 // len(bodies) + 1) for body in bodies]


def of_database(path, address=None):
    return "--database", address or f"sqlite:{path}", "--secret", path.with_name("secret")


def start_load(server, connections, seconds, bodies, pause=0, wait="asleep", gives_way=False):
    """Every connection sends the bodies in turn for so many seconds, or all of them once when these are 0."""
    def give_way():
        os.sched_setscheduler(0, os.SCHED_IDLE, os.sched_param(0))

    process = subprocess.Popen([LOAD, str(server.port), str(connections), str(seconds), str(pause), wait],
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE, preexec_fn=give_way if gives_way else None)
    process.stdin.write("".join(f"{body}\n" for body in bodies).encode())
    process.stdin.close()
    return process


def load(server, connections, seconds, bodies, pause=0):
    begin = server.cpu()
    with start_load(server, connections, seconds, bodies, pause, wait="asleep" if pause else "awake") as process:
        result = json.loads(process.stdout.read())
    if result["failures"]:
        sys.exit(f"{result['failures']} of {result['requests']} requests failed")
    return {"cpu": (server.cpu() - begin) / result["requests"] * 1e6,
            "per_second": result["requests"] / result["seconds"], "p99": result["p99"]}


def in_turn(runs, connections, seconds):
    """Measures each of the runs {name: (server, bodies)} in every round, after one that is not counted."""
    for server, bodies in runs.values():
        load(server, connections, 0, bodies)
    for _ in range(ROUNDS):
        for name, (server, bodies) in runs.items():
            note(name, **load(server, connections, seconds, bodies))


# Databases

def make_database(path, accounts, goals):
    """A database of the service with that many accounts beside its sample, goals in places of twenty."""
    subprocess.run([SERVER, "sample", *of_database(path)], stdout=subprocess.DEVNULL, check=True)
    secret = bytes.fromhex(path.with_name("secret").read_text())
    database = sqlite3.connect(path)
    sample, = database.execute("SELECT account_id FROM account").fetchone()
    step = 2 ** 62 // accounts  # ids are spread as widely as those that the service draws
    sets = -(-goals // (8 * GOALS_OF_PLACE))
    people = [(n, (n + 1) * step) for n in range(accounts)]
    database.executemany(
        "INSERT INTO account SELECT ?, name, password_hash, version, ?, ?, created_at, ?, ?, 0, 0, 0, 0, NULL FROM account"
        " WHERE account_id = ?", [(key, sets + 1, goals + 1, goals, goals * len(NAME), sample) for _, key in people])
    for n, key in people:  # as the service keeps it, and as the bare servers look for it
        login = digest(f"account {n}")
        keyed = hashlib.blake2b(f"5:login{len(login)}:{login}".encode(), key=secret, digest_size=32).hexdigest()
        database.executemany("INSERT INTO login VALUES (?, ?)", [(keyed, key), (login, key)])
    database.executemany("INSERT INTO area SELECT ?, area_id, name, color, value FROM area WHERE account_id = ?",
                         [(key, sample) for _, key in people])
    database.executemany("INSERT INTO goal_set VALUES (?, ?, 'A set', NULL)",
                         [(key, number + 1) for _, key in people for number in range(sets)])
    database.executemany(
        "WITH RECURSIVE n(goal) AS (SELECT 0 UNION ALL SELECT goal + 1 FROM n WHERE goal + 1 < ?2)"
        f" INSERT INTO goal SELECT ?1, goal + 1, goal / {8 * GOALS_OF_PLACE} + 1, goal / {GOALS_OF_PLACE} % 8 + 1,"
        " ?3, 5, 0, NULL FROM n", [(key, goals, NAME) for _, key in people])
    database.commit()
    database.close()


# What is measured

def goals_of_an_area(database):
    bodies = [read(account) for account in range(32)]
    length = len('<?xml version="1.0" encoding="UTF-8"?><answer></answer>') + sum(
        len(f"<record><id>{goal}</id><name>{NAME}</name><priority>5</priority><checked>n</checked></record>")
        for goal in range(1, GOALS_OF_PLACE + 1))
    with (service(database) as ours, Server(PEER, "select", database) as select,
          Server(PEER, "fixed", str(length)) as fixed):
        in_turn({"goals/ours": (ours, anew(bodies)), "goals/peer-select": (select, anew(bodies)),
                 "again/ours": (ours, bodies), "again/peer-fixed": (fixed, bodies)}, connections=32, seconds=0.8)


def saves(database):
    other = shutil.copy(database, database.with_name("saves-peer.db"))
    alone = shutil.copy(database, database.with_name("saves-alone.db"))
    with (service(database) as ours, Server(PEER, "group-commit", other) as peer,
          subprocess.Popen([PEER, "commits", alone], text=True, bufsize=1, preexec_fn=move_to_server_core,
                           stdin=subprocess.PIPE, stdout=subprocess.PIPE) as commits):
        def commits_per_second(seconds):
            commits.stdin.write(f"{seconds}\n")
            return float(commits.stdout.readline())

        commits_per_second(3)  # a log grows once, and is then written over
        for number in range(ROUNDS):
            bodies = [save(account, 10) for account in range(16 * number, 16 * number + 16)]  # none may hold too many
            load(ours, 16, 0, bodies)
            note("saves-16/ours", **load(ours, 16, 0.8, bodies))
            note("saves-16/peer", **load(peer, 16, 0.8, bodies))
            note("saves-1/ours", **load(ours, 1, 0.8, bodies))
            note("saves-1/peer-served", **load(peer, 1, 0.8, bodies))
            note("saves-1/peer", per_second=commits_per_second(0.8))


def read_after_saves(database):
    def saved(account, times):
        for number in range(times):
            first = GOALS_OF_PLACE * number + 1
            yield save(account, GOALS_OF_PLACE)
            yield delete(account, range(first, first + GOALS_OF_PLACE))

    with service(database) as ours:
        load(ours, 1, 0, saved(account=0, times=1))
        load(ours, 1, 0, saved(account=1, times=1500))
        in_turn({"read/after-1-save": (ours, anew([read(0)])), "read/after-1500-saves": (ours, anew([read(1)]))},
                connections=8, seconds=0.6)


def neighbour(database):
    """Reads of one account, alone and beside another that does its worst."""
    with service(database) as ours:
        load(ours, 1, 0, [read(0)])
        for number in range(1, 6):
            note("neighbour/idle", **load(ours, 1, 2, [read(0)], pause=1000))
            largest, long_names = save(number, 19_000, name="x" * 150), save(number, 64, name="x" * 65_000)  # 4 MiB
            ids = [delete(number, range(first, first + 20_000)) for first in range(1, 100_000, 20_000)]
            unknown = delete(number, range(10 ** 9, 10 ** 9 + 100_000))
            bodies = [body for mine in ids for body in (largest, unknown, mine, long_names)]
            # The clients share a core: the one that is measured never waits there for the others.
            with start_load(ours, 6, 4, bodies, gives_way=True) as attack:
                time.sleep(0.5)
                note("neighbour/beside-worst", **load(ours, 1, 2, [read(0)], pause=1000))
                if json.loads(attack.stdout.read())["requests"] < 5:
                    sys.exit("the account that does its worst did next to nothing")


@contextlib.contextmanager
def slow_connections(server, count):
    """So many, of which each sends a byte a second: one half of a head, the other of a body."""
    beginnings = ["POST /tarvex/ HTTP/1.1\r\nHost: localhost\r\n", read(0)]
    beginnings[1] = beginnings[0] + "Content-Length: 100000\r\n\r\n" + beginnings[1]
    sockets = [socket.create_connection(("127.0.0.1", server.port)) for _ in range(count)]
    for number, connection in enumerate(sockets):
        connection.sendall(beginnings[number % 2].encode())
    is_over = threading.Event()

    def dribble():
        while True:
            for connection in sockets:
                if is_over.wait(1 / count):
                    return
                connection.send(b"x")

    thread = threading.Thread(target=dribble)
    thread.start()
    yield
    is_over.set()
    thread.join()
    for connection in sockets:
        connection.close()


def beside_slow_ones(database):
    with service(database) as ours:
        load(ours, 1, 0, [read(0)])
        for _ in range(15):  # of a second each, since a machine now and then has twice the 99th percentile for a while
            note("slow/none", **load(ours, 1, 1, [read(0)], pause=1000))
            with slow_connections(ours, 500):
                note("slow/500", **load(ours, 1, 1, [read(0)], pause=1000))


def memory(database):
    """With 1,024 connections, each of which has had an answer."""
    body = read(0).encode()
    message = b"POST /tarvex/ HTTP/1.1\r\nHost: localhost\r\nContent-Length: %d\r\n\r\n%s" % (len(body), body)
    for _ in range(3):
        for name, start in (("ours", lambda: service(database)), ("peer", lambda: Server(PEER, "select", database))):
            with start() as server, contextlib.ExitStack() as kept:
                for _ in range(1024):
                    connection = kept.enter_context(socket.create_connection(("127.0.0.1", server.port)))
                    connection.sendall(message)
                    assert connection.recv(65536).startswith(b"HTTP/1.1 200 ")
                note(f"memory/{name}", kib=server.kib())


def million_goals(many, one):
    for _ in range(15):
        for name, database in (("one-account", one), ("million-goals", many)):
            begin = time.perf_counter()
            with service(database):
                note(f"start/{name}", seconds=time.perf_counter() - begin)
    everywhere = [read(account=31 * n, set_id=n % 6 + 1, area_id=n % 8 + 1) for n in range(32)]
    with service(many) as large, service(one) as small:
        in_turn({"size/one-account": (small, anew([read(0)])), "size/million-goals": (large, anew(everywhere))},
                connections=32, seconds=0.6)


def backup(many):
    """Reads, alone and while all is copied beside them by a process on the service's core."""
    with service(many) as ours:
        bodies = anew([read(account=31 * n) for n in range(32)])
        load(ours, 1, 0, bodies)
        for number in range(5):
            note("backup/none", **load(ours, 1, 1, bodies, pause=1000))
            with subprocess.Popen([SERVER, "backup", many.with_name(f"copy-{number}.db"), *of_database(many)],
                                  stdout=subprocess.DEVNULL, preexec_fn=move_to_server_core) as copying:
                note("backup/beside", **load(ours, 1, 1, bodies, pause=1000))
                if copying.poll() is not None:
                    sys.exit("the copy was made too soon")
            if copying.returncode:
                sys.exit("there is no copy")


def print_figures():
    print(json.dumps({name: {key: statistics.median(values) for key, values in kinds.items()}
                      for name, kinds in figures.items()}))


def main():
    resource.setrlimit(resource.RLIMIT_NOFILE, (4096, resource.getrlimit(resource.RLIMIT_NOFILE)[1]))
    os.sched_setaffinity(0, {CLIENT_CORE})
    with tempfile.TemporaryDirectory(dir=FOLDER) as folder:
        few, one, many = (pathlib.Path(folder) / name for name in ("few.db", "one.db", "many.db"))
        make_database(few, accounts=200, goals=GOALS_OF_PLACE)
        make_database(one, accounts=1, goals=1000)
        make_database(many, accounts=1000, goals=1000)
        for measure in goals_of_an_area, saves, read_after_saves, neighbour, beside_slow_ones, memory:
            measure(pathlib.Path(shutil.copy(few, few.with_name(f"{measure.__name__}.db"))))
            print(f"measured: {measure.__name__}", file=sys.stderr)
        million_goals(many, one)
        backup(many)
    print_figures()


if __name__ == "__main__":
    main()
