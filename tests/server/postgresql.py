#!/usr/bin/env python3
"""Runs a command beside a PostgreSQL server of its own, whose address it finds in TARVEX_TEST_POSTGRESQL, and in
TARVEX_TEST_POSTGRESQL_RESTART the shell's command that stops that server and starts it again.

    postgresql.py COMMAND...

The server listens on a socket in a temporary folder, and is gone with the command. It is run by an unprivileged user, as
it demands.
"""

import os
import pathlib
import pwd
import shlex
import signal
import subprocess
import sys
import tempfile

PROGRAMS = max(pathlib.Path("/usr/lib/postgresql").glob("*/bin"), key=lambda path: int(path.parent.name))
AS_OWNER = "setpriv --reuid=postgres --regid=postgres --clear-groups".split() if os.getuid() == 0 else []


def execute(command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, cwd="/")


class Server:
    """A PostgreSQL server in a folder of its own; a standby of another one, if that is given."""

    def __init__(self, primary=None, settings=""):
        self.temporary = tempfile.TemporaryDirectory(prefix="tarvex-postgresql-")
        self.folder = self.temporary.name
        self.data = f"{self.folder}/data"
        if AS_OWNER:
            owner = pwd.getpwnam("postgres")
            os.chown(self.folder, owner.pw_uid, owner.pw_gid)
        if primary:
            self.run("pg_basebackup", "-R", "-D", self.data, "-d", f"{primary.address()}&application_name=standby")
        else:
            self.run("initdb", "-D", self.data, "-A", "trust", "-U", "tarvex", "-E", "UTF8", "--locale=C", "--no-sync")
        self.control("start", "-o", f"-k {self.folder} -c listen_addresses= -c max_connections=200 {settings}")

    def address(self):
        return f"postgresql://tarvex@/postgres?host={self.folder}"

    def command(self, program, *arguments):
        return [*AS_OWNER, str(PROGRAMS / program), *arguments]

    def control_command(self, what, *arguments):
        return self.command("pg_ctl", "-D", self.data, "-w", "-l", f"{self.folder}/log", what, *arguments)

    def run(self, program, *arguments):
        execute(self.command(program, *arguments))

    def control(self, what, *arguments):
        execute(self.control_command(what, *arguments))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if pathlib.Path(self.data, "postmaster.pid").exists():
            self.control("stop", "-m", "immediate")
        self.temporary.cleanup()


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    with Server() as server:
        told = {"TARVEX_TEST_POSTGRESQL": server.address(),
                "TARVEX_TEST_POSTGRESQL_RESTART": f"cd / && {shlex.join(server.control_command('restart'))} >/dev/null"}
        sys.exit(subprocess.run(sys.argv[1:], env=os.environ | told).returncode)


if __name__ == "__main__":
    main()
