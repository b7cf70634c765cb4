#!/usr/bin/env python3
"""A month in the life of a service and what may befall it, in fast motion: after each step a client sees the same wheel.

    drill.py SERVER

Sign-up, daily use, an accidental delete taken back, a copy, the loss of the disk, a database of an older version, the move
to PostgreSQL, the loss of its primary.
"""

import contextlib
import hashlib
import http.client
import pathlib
import re
import signal
import sqlite3
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/server"))
from postgresql import Server  # noqa: E402

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
LOGIN = "anna@example.org"


def digest(text):
    return hashlib.md5(text.encode()).hexdigest().upper()


class Service:
    """A process of the service, and a client of it who is Anna."""

    def __init__(self, *installation):
        self.process = subprocess.Popen([PROGRAM, "serve", "--listen", "127.0.0.1:0", *installation], text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.port = int(re.search(r":(\d+)/", self.process.stdout.readline())[1])

    def post(self, body):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=30)
        connection.request("POST", "/tarvex/", body)
        return connection.getresponse().read().decode()

    def ask(self, kind, *fields):
        pairs = [f"p1={kind}", f"p2={digest(LOGIN)}", f"p3={digest('x')}"]
        return self.post("&".join(pairs + [f"p{number}={field}" for number, field in enumerate(fields, 4)]))

    def do(self, kind, *fields):
        answer = self.ask(kind, *fields)
        assert answer == "OK" or answer.isdigit(), f"{kind}: {answer}"

    def wheel(self):
        sets = self.ask("get-sets")
        return [self.ask("get-areas"), sets] + [self.ask("get-complex-goals-for-sets", number)
                                                for number in re.findall("<id>([0-9]+)</id>", sets)]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.send_signal(signal.SIGTERM)
        assert self.process.wait(timeout=10) == 0


def command(*words):
    return subprocess.run([PROGRAM, *words], check=True, text=True, stdout=subprocess.PIPE).stdout


def goals(day, set_id, area):
    return "".join(f"name:Day {day}, step {step};priority:{step % 3 * 5};checked:{step % 2};setsId:{set_id};"
                   f"areaId:{area};{{_end_}}" for step in range(1, 6))


def use_for_a_month(service):
    """Each day an area is opened and saved: its goals are made anew, and the old ones deleted."""
    for name in "Spring", "Summer":
        service.do("create-sets", name)
    for day in range(1, 31):
        set_id, area = day % 3 + 1, day % 8 + 1
        old = re.findall("<id>([0-9]+)</id>", service.ask("get-goals", set_id, area))
        service.do("set-area-value", area, day % 11)
        service.do("create-some-goals", goals(day, set_id, area))
        service.do("delete-some-goals", "".join(f"{goal};" for goal in old))


def as_older_version_had_it(new, old):
    """The same accounts in a database of the first schema."""
    with contextlib.closing(sqlite3.connect(old)) as database:
        database.executescript((ROOT / "TarvexServer/store/schema/sqlite/001-accounts.sql").read_text())
        database.execute("CREATE TABLE schema_version AS SELECT 1 AS version")
        database.execute("ATTACH ? AS new", (str(new),))
        for table in "account", "area", "goal_set", "goal":
            columns = ", ".join(row[1] for row in database.execute(f"PRAGMA main.table_info({table})"))
            database.execute(f"INSERT INTO main.{table} ({columns}) SELECT {columns} FROM new.{table}")
        database.execute("INSERT INTO login SELECT ?, account_id FROM account", (digest(LOGIN),))  # without a secret yet
        database.commit()


def main():
    with tempfile.TemporaryDirectory() as folder:
        first, second, older = (f"{folder}/{name}.db" for name in ("first", "second", "older"))
        secret = ["--secret", f"{folder}/secret"]

        def at(path):
            return ["--database", f"sqlite:{path}", *secret]

        def check(step, service):
            assert service.wheel() == wheel, f"another wheel after: {step}"
            print(f"the same wheel after: {step}")

        with Service(*at(first)) as service:
            assert service.post(f"p1=create-new-user&p2={LOGIN}&p3=x&p4=Anna&type=json") == '{"result":"OK"}'
            use_for_a_month(service)
            wheel = service.wheel()
            service.do("delete-sets", 2)
            assert service.wheel() != wheel
            command("undelete", "--login", LOGIN, "--set", "2", *at(first))
            check("a delete that was taken back", service)
            command("backup", f"{folder}/copy.db", *at(first))
            service.do("create-sets", "Not in the copy")
        for lost in pathlib.Path(folder).glob("first.db*"):
            lost.unlink()
        pathlib.Path(folder, "secret").unlink()
        command("restore", f"{folder}/copy.db", *at(second))
        with Service(*at(second)) as service:
            check("the loss of the disk", service)
        as_older_version_had_it(second, older)
        with Service(*at(older)) as service:
            check("an upgrade", service)
        assert list(pathlib.Path(folder).glob("older.db.before-schema-*"))

        with Server() as primary, Server(primary) as standby:
            subprocess.run(["psql", "-qd", primary.address(), "-c", "ALTER SYSTEM SET synchronous_standby_names = 'standby'",
                            "-c", "SELECT pg_reload_conf()"], check=True, stdout=subprocess.DEVNULL)
            address = f"postgresql://tarvex@/postgres?host={primary.folder},{standby.folder}"
            command("migrate", "--from", f"sqlite:{older}", "--to", address)
            with Service("--database", address, *secret) as one, Service("--database", address, *secret) as other:
                check("the move to PostgreSQL", one)
                primary.control("stop", "-m", "immediate")
                standby.control("promote")
                check("the loss of the primary", other)
                one.do("create-sets", "Life goes on")
                assert "Life goes on" in other.ask("get-sets")


if __name__ == "__main__":
    main()
