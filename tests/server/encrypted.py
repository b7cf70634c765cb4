#!/usr/bin/env python3
"""The service reaches PostgreSQL over TLS, and refuses a server whose certificate is another authority's or another
host's.

    encrypted.py SERVER
"""

import os
import pathlib
import pwd
import shutil
import socket
import subprocess
import sys
import tempfile

from postgresql import AS_OWNER, Server

MAKE = pathlib.Path(__file__).resolve().parents[2] / "packaging/front/make-certificates"
PROGRAM = pathlib.Path(sys.argv[1]).resolve()
NAME = "tarvex.example.org"


def run(address):
    """What a command says that opens the database; it ends with 0 if it could."""
    done = subprocess.run([PROGRAM, "sample", "--secret", "secret", "--database", address], capture_output=True, text=True)
    return done.returncode, done.stderr


def main():
    for authority in "ours", "another":
        subprocess.run([MAKE, authority, NAME], check=True, capture_output=True)
    with socket.create_server(("127.0.0.1", 0)) as taken:
        port = taken.getsockname()[1]
    os.mkdir("server")
    key = shutil.copy("ours/service.pem", "server/key.pem")
    if AS_OWNER:
        owner = pwd.getpwnam("postgres")
        os.chmod(".", 0o755)
        os.chown(key, owner.pw_uid, owner.pw_gid)
    settings = f"-c listen_addresses=127.0.0.1 -c port={port} -c ssl=on" \
               f" -c ssl_cert_file={os.path.abspath(key)} -c ssl_key_file={os.path.abspath(key)}"
    with Server(settings=settings):
        def address(authority, name=NAME):
            return (f"postgresql://tarvex@{name}:{port}/postgres?hostaddr=127.0.0.1&sslmode=verify-full"
                    f"&sslrootcert={authority}/ca.pem")

        for wrong, words in ((address("another"), "certificate verify failed"),
                             (address("ours", "elsewhere.example.org"), "does not match host name")):
            code, said = run(wrong)
            assert code == 1 and words in said and said.count("\n") == 1, said
        assert run(address("ours")) == (0, "")


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        main()
