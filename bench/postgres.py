#!/usr/bin/env python3
"""The same as bench/server.py on a PostgreSQL server of the benchmark's own, which shares the core of the service.

    bench/postgres.py FOLDER SERVER
"""

import contextlib
import json
import os
import pathlib
import sqlite3
import subprocess
import sys
import tempfile
import time

from server import (CLIENT_CORE, FOLDER, GOALS_OF_PLACE, ROUNDS, SERVER, SERVER_CORE, Server, anew, in_turn,
                    load, make_database, move_to_all_cores, note, print_figures, read, save, service, start_load)

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests/server"))
import postgresql  # noqa: E402

PEER = FOLDER / "bench-postgres-peer"
TABLES = "account", "login", "area", "goal_set", "goal"


class Databases:
    """Databases of one PostgreSQL server."""

    def __init__(self, server):
        self.server = server

    def address(self, name):
        return self.server.address().replace("/postgres?", f"/{name}?")

    def sql(self, *commands, name="postgres"):
        words = [word for command in commands for word in ("-c", command)]
        subprocess.run(["psql", "-qd", self.address(name), "-v", "ON_ERROR_STOP=1", *words], check=True)

    def make(self, name, like="template1"):
        self.sql(f"CREATE DATABASE {name} TEMPLATE {like}")
        return self.address(name)

    def migrate(self, path, name):
        """As the service does it; the seconds that it took."""
        address = self.make(name)
        begin = time.perf_counter()
        subprocess.run([SERVER, "migrate", "--from", f"sqlite:{path}", "--to", address], check=True,
                       stdout=subprocess.DEVNULL)
        return time.perf_counter() - begin


def goals_of_an_area(databases, few):
    bodies = [read(account) for account in range(32)]
    address = databases.address("few")
    with service(few, address) as ours, Server(PEER, "select", address) as peer:
        in_turn({"pg-goals/ours": (ours, anew(bodies)), "pg-goals/peer": (peer, anew(bodies))}, connections=32,
                seconds=0.8)


def saves(databases, few):
    other, third = databases.make("peer", like="few"), databases.make("third", like="few")
    with (service(few, databases.address("few")) as ours, Server(PEER, "group-commit", other) as peer,
          Server(PEER, "at-once", third) as at_once):
        for number in range(ROUNDS):
            bodies = [save(account, 10) for account in range(16 * number, 16 * number + 16)]
            load(ours, 16, 0, bodies)
            note("pg-saves/ours", **load(ours, 16, 0.8, bodies))
            note("pg-saves/peer", **load(peer, 16, 0.8, bodies))
            note("pg-saves/peer-at-once", **load(at_once, 16, 0.8, bodies))


def processes(databases, few):
    """One process and three on all cores, each time asked by three programs."""
    def per_second(servers, connections, bodies):
        with contextlib.ExitStack() as running:
            asked = [running.enter_context(start_load(servers[n % len(servers)], connections, 1.5, bodies[n::3]))
                     for n in range(3)]
            return sum(float(result["requests"]) / result["seconds"]
                       for result in (json.loads(one.stdout.read()) for one in asked))

    address = databases.make("shared", like="few")
    with contextlib.ExitStack() as running:
        three = [running.enter_context(service(few, address, move=move_to_all_cores)) for _ in range(3)]
        for number in range(ROUNDS):
            people = range(21 * number, 21 * number + 21)
            for kind, bodies in (("reads", anew([read(account) for account in people])),
                                 ("saves", [save(account, 10) for account in people])):
                for server in three:
                    load(server, 8, 0, bodies)
                note(f"pg-{kind}/one-process", per_second=per_second(three[:1], 8, bodies))
                note(f"pg-{kind}/three-processes", per_second=per_second(three, 8, bodies))


def moving(databases, some):
    """All rows to PostgreSQL by the service, which then compares them, and as bare COPY."""
    with tempfile.TemporaryDirectory(dir=FOLDER) as folder, contextlib.closing(sqlite3.connect(some)) as source:
        copies = []
        for table in TABLES:
            file = pathlib.Path(folder, table)
            rows = source.execute(f"SELECT * FROM {table}")
            columns = ", ".join(column[0] for column in rows.description)
            file.write_text("".join("\t".join("\\N" if value is None else str(value) for value in row) + "\n"
                                    for row in rows))
            copies.append(f"\\copy {table} ({columns}) from '{file}'")
        for number in range(3):
            note("pg-move/ours", seconds=databases.migrate(some, f"moved{number}"))
            databases.make(f"copied{number}", like=f"moved{number}")
            databases.sql(f"TRUNCATE {', '.join(TABLES)} CASCADE", name=f"copied{number}")
            begin = time.perf_counter()
            databases.sql("BEGIN", *copies, "COMMIT", name=f"copied{number}")
            note("pg-move/peer", seconds=time.perf_counter() - begin)


def main():
    os.sched_setaffinity(0, {SERVER_CORE})
    with tempfile.TemporaryDirectory(dir=FOLDER) as folder, postgresql.Server() as server:
        os.sched_setaffinity(0, {CLIENT_CORE})
        databases = Databases(server)
        few, some = (pathlib.Path(folder) / name for name in ("few.db", "some.db"))
        make_database(few, accounts=200, goals=GOALS_OF_PLACE)
        make_database(some, accounts=100, goals=1000)
        databases.migrate(few, "few")
        databases.sql("VACUUM ANALYZE", name="few")
        for measure, argument in ((goals_of_an_area, few), (saves, few), (processes, few), (moving, some)):
            measure(databases, argument)
            print(f"measured: {measure.__name__}", file=sys.stderr)
    print_figures()


if __name__ == "__main__":
    main()
