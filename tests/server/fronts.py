"""Signs in through every recipe of packaging/front, with the programs that it is for, and tries to cheat there.

usage: fronts.py SERVER
Ends with 77 where a program is missing.
"""

import contextlib
import encodings.idna  # noqa: F401  (once nobody runs this, it may be out of reach)
import functools
import os
import pathlib
import pwd
import re
import shutil
import signal
import socket
import ssl
import subprocess
import sys
import tempfile

from ports import free_port

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from desktop import md5, wait_for  # noqa: E402

FRONT = pathlib.Path(__file__).resolve().parents[2] / "packaging/front"
NAME, HERE, ELSEWHERE = "tarvex.example.org", "127.0.0.1", "127.0.0.2"
WRONG = "The login or the password is wrong."
TOO_MANY = "Too many failed attempts. Please wait a minute and try again."
SERVED = (WRONG, TOO_MANY, "OK")
PATHS = "".join(f"{kind}_temp_path {kind};" for kind in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
NGINX = f"daemon off; pid nginx.pid; events {{}} http {{ access_log off; {PATHS} include "


def plain(port, source=HERE):
    return socket.create_connection((HERE, port), timeout=10, source_address=(source, 0))


def tls(port, certificate):
    """A client's machine of its own, without a tunnel."""
    context = ssl.create_default_context(cafile="ca.pem")
    context.load_cert_chain(certificate)
    return context.wrap_socket(plain(port, ELSEWHERE), server_hostname=NAME)


def queues(port):
    """How many bytes wait to be read on each connection to the port."""
    lines = [line.split() for line in open("/proc/net/tcp")]
    return [int(line[4][9:], 16) for line in lines if line[1].endswith(f":{port:04X}") and line[3] == "01"]


def send(connect, body, first="", fields="", missing=0):
    """The connection, on which so many bytes fewer were sent than the request states."""
    fields += f"Host: {NAME}\r\nConnection: close\r\nContent-Length: {len(body) + missing}\r\n"
    connection = connect()
    connection.sendall(f"{first}POST /tarvex/ HTTP/1.1\r\n{fields}\r\n{body}".encode())
    return connection


def post(connect, body, **sent):
    """The body of the answer; nothing if there was none."""
    with contextlib.suppress(OSError):
        return answer_on(send(connect, body, **sent))
    return ""


def answer_on(connection):
    answer = b""
    with contextlib.suppress(OSError), connection:
        while some := connection.recv(65536):
            answer += some
    return answer.decode().partition("\r\n\r\n")[2]


class Trial:
    """A database with the sample account, the processes that serve it, and what stands before them."""

    def __init__(self, running, processes, *arguments):
        self.running, self.log, database = running, tempfile.TemporaryFile("w+", dir="."), tempfile.mkdtemp(dir=".")
        tell = ["--database", f"sqlite:{database}/wheel.db"]
        sample = subprocess.run(["./server", "sample", *tell], check=True, capture_output=True, text=True)
        self.account = re.findall("(?:login|password): (.*)", sample.stdout)
        command = ["./server", "serve", "--listen", f"{HERE}:0", *tell, *arguments]
        self.processes = [self.begin(*command, stdout=subprocess.PIPE, stderr=self.log) for _ in range(processes)]
        self.ports = [int(re.search(b":([0-9]+)/", process.stdout.readline())[1]) for process in self.processes]

    def begin(self, *command, port=None, stderr=subprocess.DEVNULL, **options):
        process = subprocess.Popen([str(part) for part in command], stderr=stderr, **options)
        self.running.callback(process.wait)
        self.running.callback(process.terminate)
        if port:
            wait_for(f"{command[0]} to listen", lambda: listens(port))
        return process

    def body(self, kind, *values, account=None):
        digests = [md5(text) for text in account or self.account]
        return "&".join(f"p{i}={value}" for i, value in enumerate([kind, *digests, *values], 1))

    def guess(self, connect, number, **sent):
        return post(connect, self.body("sign-in", account=(f"stranger{number}", "x")), **sent)

    def goals(self, connect):
        return re.findall("<id>(.*?)</id>", post(connect, self.body("get-goals", 1, 1)))

    def stunnel_service(self, service, certificate="service.pem"):
        port = free_port()
        places = {"accept = 8718": f"accept = {HERE}:{port}", "8717": service, "service.pem": certificate}
        self.begin("stunnel", recipe("stunnel-service.conf", places), port=port)
        return port

    def stunnel_client(self, service):
        port = free_port()
        places = {f"{HERE}:8717": f"{HERE}:{port}", f"{NAME}:8718": f"{HERE}:{service}", "client.pem": "anna.pem"}
        self.begin("stunnel", recipe("stunnel-client.conf", places), port=port)
        return functools.partial(plain, port)

    def ssh(self, service, sshd, key="key", known="known", port=None):
        places = {f"HostName {NAME}": f"HostName {HERE}", "User tarvex": f"User {USER}", "~/.ssh/tarvex": key,
                  f"LocalForward {HERE}:8717 {HERE}:8717": f"LocalForward {HERE}:{port or free_port()} {HERE}:{service}"}
        return self.begin("ssh", "-N", "-F", recipe("ssh-client.conf", places), "-p", sshd, "-o",
                          f"UserKnownHostsFile={known}", "-o", "GlobalKnownHostsFile=none", "tarvex", port=port)

    def counts_addresses(self, near, far):
        """Ten failures at one address, whatever it pretends to be, exhaust that address and no other."""
        forged = "X-Forwarded-For: 127.0.0.1, 10.0.0.{}\r\n"
        answers = [self.guess(far, number, fields=forged.format(number)) for number in range(14)]
        # One process may hear of another's failures a moment later.
        assert answers[:10] == [WRONG] * 10 and answers[-1] == TOO_MANY, answers
        header = "PROXY TCP4 10.0.0.99 127.0.0.1 1 2\r\n"
        assert self.guess(far, 20, first=header) not in SERVED, "a header was believed"
        assert self.guess(near, 21) == WRONG

    def keeps_goals_behind_a_cut_save(self, near):
        """What was cut short must reach the service, which refuses the delete behind it."""
        goals = self.goals(near)
        assert goals, "not signed in"
        save = self.body("create-some-goals", "name:Cut;priority:5;checked:0;setsId:1;areaId:1;{_end_}")
        with send(near, save, missing=1):
            wait_for("the save to begin", lambda: any(map(queues, self.ports)))
        wait_for("the cut save", lambda: self.log.seek(0) or '"create-some-goals"' in self.log.read())
        assert post(near, self.body("delete-some-goals", ";".join(goals) + ";")) == "Error"
        assert self.goals(near) == goals

    def refuses_strangers(self, port):
        """Certificates of another authority; in the service's place a client's and that of another host too."""
        assert self.guess(functools.partial(tls, port, "stranger/anna.pem"), 30) not in SERVED
        for pretender in ("stranger/service.pem", "bob.pem", "host/service.pem"):
            assert self.guess(self.stunnel_client(self.stunnel_service(self.ports[0], pretender)), 31) == ""

    def sends_once(self, near):
        """A process dies with a request; the next ones go to the other."""
        before = self.goals(near)
        goal = self.body("create-goal", "G" * 1000, 5, 0, 1, 1)
        for process in self.processes:
            process.send_signal(signal.SIGSTOP)
        pending = send(near, goal)
        taken = wait_for("a request to hang", lambda: [port for port in self.ports
                                                       if max(queues(port), default=0) > len(goal)])
        for port, process in zip(self.ports, self.processes):
            process.send_signal(signal.SIGKILL if port in taken else signal.SIGCONT)
        assert answer_on(pending) == ""
        assert self.goals(near) == before, "sent to the other process as well"
        assert [post(near, goal) for _ in range(4)] == ["OK"] * 4


def listens(port):
    with contextlib.suppress(OSError), plain(port):
        return True


def recipe(name, places):
    """The file as it stands, but for users, ports and paths."""
    text = re.sub("^ *(set[ug]id|user|group) .*\n", "", pathlib.Path("front", name).read_text(), flags=re.M)
    for old, new in places.items():
        assert old in text, f"{name} holds no {old!r}"
        text = text.replace(old, str(new))
    file = pathlib.Path(tempfile.mkstemp(dir=".", suffix=name)[1]).resolve()
    file.write_text(text.replace("/etc/tarvex", os.getcwd()))
    return file


def try_stunnel(running):
    trial = Trial(running, 1, "--trusted-proxy", HERE, "--proxy-says", "proxy-protocol")
    port = trial.stunnel_service(trial.ports[0])
    near = trial.stunnel_client(port)
    trial.counts_addresses(near, functools.partial(tls, port, "bob.pem"))
    trial.keeps_goals_behind_a_cut_save(near)
    trial.refuses_strangers(port)


def try_nginx(running):
    trial, port = Trial(running, 2, "--trusted-proxy", HERE), free_port()
    own = recipe("nginx.conf", {"8718": f"{HERE}:{port}", "8717": trial.ports[0], "8727": trial.ports[1]})
    pathlib.Path("main.conf").write_text(f"{NGINX} {own}; }}")
    trial.begin("nginx", "-e", "stderr", "-p", os.getcwd(), "-c", "main.conf", port=port)
    near = trial.stunnel_client(port)
    trial.counts_addresses(near, functools.partial(tls, port, "bob.pem"))
    trial.keeps_goals_behind_a_cut_save(near)
    trial.refuses_strangers(port)
    trial.sends_once(near)


def try_haproxy(running):
    trial, port = Trial(running, 2, "--trusted-proxy", HERE), free_port()
    own = recipe("haproxy.cfg", {":80\n": f"{HERE}:{port}\n", "8717": trial.ports[0], "8727": trial.ports[1]})
    trial.begin("haproxy", "-db", "-f", own, port=port)
    near = functools.partial(plain, port)
    trial.counts_addresses(near, functools.partial(plain, port, ELSEWHERE))
    trial.keeps_goals_behind_a_cut_save(near)
    trial.sends_once(near)


def try_ssh(running):
    trial, port, own, astray = Trial(running, 1), free_port(), free_port(), free_port()
    for key in ("key", "hostkey", "stranger/key"):
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", key], check=True)
    pathlib.Path("known").write_text(f"[{HERE}]:{port} {pathlib.Path('hostkey.pub').read_text()}")
    places = {"User tarvex": f"User {USER}", f"{HERE}:8717": f"{HERE}:{trial.ports[0]}"}
    pathlib.Path("sshd").write_text(
        f"Port {port}\nListenAddress {HERE}\nHostKey {os.getcwd()}/hostkey\nAuthorizedKeysFile {os.getcwd()}/key.pub\n"
        f"StrictModes no\nUsePAM yes\nPidFile none\nInclude {recipe('sshd-service.conf', places)}\n")
    trial.begin(shutil.which("sshd"), "-D", "-f", "sshd", port=port)
    trial.ssh(trial.ports[0], port, port=own)
    near = functools.partial(plain, own)
    trial.keeps_goals_behind_a_cut_save(near)
    for given in ({"key": "stranger/key"}, {"known": os.devnull}):
        assert trial.ssh(trial.ports[0], port, **given).wait(10) != 0
    trial.ssh(port, port, port=astray)
    assert plain(astray).recv(1) == b"", "sshd led to another port"


def main():
    make = functools.partial(subprocess.run, check=True, capture_output=True)
    for authority in (".", "stranger"):
        make(["front/make-certificates", authority, NAME, "anna", "bob"])
    os.mkdir("host")
    for file in ("ca.pem", "ca.key"):
        shutil.copy(file, "host")
    make(["front/make-certificates", "host", "elsewhere.example.org"])
    if os.geteuid() == 0:
        subprocess.run(["chown", "-R", "nobody:nogroup", "."], check=True)
        os.setgroups([])
        os.setgid(pwd.getpwnam("nobody").pw_gid)
        os.setuid(pwd.getpwnam("nobody").pw_uid)
    global USER
    USER = pwd.getpwuid(os.getuid()).pw_name
    for attempt in (try_stunnel, try_nginx, try_haproxy, try_ssh):
        with contextlib.ExitStack() as running:
            attempt(running)


os.environ["PATH"] += ":/usr/sbin"
if missing := [program for program in ("stunnel", "nginx", "haproxy", "sshd") if not shutil.which(program)]:
    print("Skipped, for want of", *missing)
    sys.exit(77)
with tempfile.TemporaryDirectory() as folder:
    shutil.copy(sys.argv[1], f"{folder}/server")
    shutil.copytree(FRONT, f"{folder}/front")
    os.chdir(folder)
    main()
