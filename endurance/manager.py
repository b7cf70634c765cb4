#!/usr/bin/env python3
"""Kills the machine of the primary, as far as processes go, under pg_auto_failover and in the middle of writes: what was
confirmed is there, once, and three processes of the service go on by themselves. Says how long nothing was written.

    manager.py SERVER     with the packages of the group "manager"
"""

import os
import pathlib
import pwd
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/server"))
from failover import Client, conclude, start_service  # noqa: E402
from ports import free_ports  # noqa: E402
from postgresql import AS_OWNER, PROGRAMS  # noqa: E402

HERE = "127.0.0.1"
OWNER = "postgres" if AS_OWNER else pwd.getpwuid(os.getuid()).pw_name
LONGEST = 180  # seconds that any step may take


class Node:
    """pg_autoctl and the PostgreSQL server that it looks after."""

    def __init__(self, folder, name, port, kind, *options):
        self.folder, self.data = folder, f"{folder}/{name}"
        self.environment = os.environ | {"HOME": folder, "XDG_CONFIG_HOME": f"{folder}/config",
                                         "XDG_DATA_HOME": f"{folder}/share", "XDG_RUNTIME_DIR": f"{folder}/run",
                                         "PATH": f"{PROGRAMS}:/usr/bin:/bin", "LC_ALL": "C.UTF-8"}
        self.log = open(f"{folder}/{name}.log", "w")
        self.run("create", kind, "--pgport", str(port), "--hostname", HERE, "--auth", "trust", "--no-ssl", *options)
        self.run("config", "set", "postgresql.listen_addresses", HERE)
        self.process = subprocess.Popen(self.command("run"), **self.surroundings(), start_new_session=True)

    def command(self, *words):
        return [*AS_OWNER, "pg_autoctl", *words, "--pgdata", self.data]

    def surroundings(self):
        return {"cwd": self.folder, "env": self.environment, "stdout": self.log, "stderr": self.log}

    def run(self, *words):
        subprocess.run(self.command(*words), check=True, **self.surroundings())

    def postmaster(self):
        return int(pathlib.Path(self.data, "postmaster.pid").read_text().splitlines()[0])

    def kill(self):
        """As a machine dies: nobody is told."""
        postmaster = self.postmaster()
        os.killpg(self.process.pid, signal.SIGKILL)
        for pid in postmaster, self.process.pid:
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        self.process.wait()

    def end(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(timeout=60)
            except subprocess.TimeoutExpired:
                self.kill()


def ask(address, query):
    done = subprocess.run(["psql", "-qAtX", "-d", address, "-c", query], capture_output=True, text=True)
    return done.stdout.strip()


def wait_until(what, holds):
    end = time.monotonic() + LONGEST
    while not holds():
        assert time.monotonic() < end, f"waited in vain for {what}"
        time.sleep(0.5)


def main():
    with tempfile.TemporaryDirectory(prefix="tarvex-manager-") as folder:
        if AS_OWNER:
            owner = pwd.getpwnam(OWNER)
            os.chown(folder, owner.pw_uid, owner.pw_gid)
        ports = free_ports(3)
        monitor = f"postgresql://autoctl_node@{HERE}:{ports[0]}/pg_auto_failover"
        nodes = [Node(folder, "monitor", ports[0], "monitor")]
        services = []
        try:
            def states():
                return dict(line.split("|") for line in
                            ask(monitor, "SELECT nodename, reportedstate FROM pgautofailover.node").splitlines())

            wait_until("the monitor", lambda: ask(monitor, "SELECT 1 FROM pgautofailover.formation"))
            for name, port in ("one", ports[1]), ("two", ports[2]):
                nodes.append(Node(folder, name, port, "postgres", "--name", name, "--username", "tarvex", "--dbname",
                                  "tarvex", "--listen", HERE, "--monitor", monitor))
                wait_until(f"node {name}", lambda: states().get(name) in ("single", "secondary"))
            wait_until("a synchronous standby", lambda: states() == {"one": "primary", "two": "secondary"})
            address = f"postgresql://tarvex@{HERE}:{ports[1]},{HERE}:{ports[2]}/tarvex"
            ask(f"postgresql://{OWNER}@{HERE}:{ports[1]}/tarvex", "ALTER DATABASE tarvex OWNER TO tarvex")
            services = [start_service(sys.argv[1], folder, address) for _ in range(3)]
            clients = [Client(port, number) for number, (_, port) in enumerate(services)]
            for client in clients:
                client.start()
            time.sleep(3)
            nodes[1].kill()
            killed = time.monotonic()
            wait_until("the standby to be promoted", lambda: states().get("two") in ("wait_primary", "primary"))
            promoted = time.monotonic() - killed
            wait_until("writes", lambda: all(client.times[-1] > killed + promoted for client in clients))
            conclude(clients)
            print(f"the standby was promoted {promoted:.0f} s after the kill")
        except BaseException:
            for node in nodes:
                print(pathlib.Path(node.log.name).read_text()[-2000:], file=sys.stderr)
            raise
        finally:
            for process, _ in services:
                process.send_signal(signal.SIGTERM)
                process.wait(timeout=20)
            for node in reversed(nodes):
                node.end()


if __name__ == "__main__":
    main()
