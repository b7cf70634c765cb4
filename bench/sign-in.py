#!/usr/bin/env python3
"""Signs in at a service that has just started, with the client and with bare requests in turn, and prints, as JSON, the
medians of the time that took.

    bench/sign-in.py PROGRAM SERVER
"""

import json
import pathlib
import statistics
import subprocess
import sys
import tempfile

PROGRAM, SERVER = sys.argv[1:]
ROUNDS = 21
LOGIN, PASSWORD = "sample@example.org", "wheel of life"


def sign_in(kind, database):
    """By a new process at a new one: neither has anything of an earlier time in memory."""
    with subprocess.Popen([SERVER, "serve", "--listen", "127.0.0.1:0", "--database", database],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as server:
        try:
            url = server.stdout.readline().split()[1]
            return float(subprocess.run([PROGRAM, kind, url, LOGIN, PASSWORD], env={"QT_QPA_PLATFORM": "offscreen"},
                                        capture_output=True, text=True, check=True, timeout=60).stdout)
        finally:
            server.terminate()


def main():
    times = {"ours": [], "peer": []}
    with tempfile.TemporaryDirectory() as folder:
        database = f"sqlite:{pathlib.Path(folder, 'service.db')}"
        subprocess.run([SERVER, "sample", "--database", database], check=True, stdout=subprocess.DEVNULL)
        for round_number in range(ROUNDS + 1):
            for kind, seconds in times.items():
                taken = sign_in(kind, database)
                if round_number > 0:  # the first round warms the caches
                    seconds.append(taken)
    print(json.dumps({f"sign-in/{kind}": {"seconds": statistics.median(seconds)} for kind, seconds in times.items()}))


if __name__ == "__main__":
    main()
