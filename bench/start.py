#!/usr/bin/env python3
"""Starts the product and a bare window in turn and prints, as JSON, the medians of time and memory at the first frame."""

import json
import os
import statistics
import subprocess
import sys
import time

ROUNDS = 41


def start(program):
    begin = time.perf_counter()
    result = subprocess.run([program], env={**os.environ, "QT_QPA_PLATFORM": "offscreen"}, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL, check=True, timeout=60)
    return time.perf_counter() - begin, int(result.stdout)


def main():
    programs = {"start/ours": sys.argv[1], "start/peer": sys.argv[2]}
    runs = {name: [] for name in programs}
    for round_number in range(ROUNDS + 1):
        for name, program in programs.items():
            run = start(program)
            if round_number > 0:  # the first round warms the caches
                runs[name].append(run)
    print(json.dumps({name: {"seconds": statistics.median(t for t, _ in values),
                             "kib": statistics.median(m for _, m in values)} for name, values in runs.items()}))


if __name__ == "__main__":
    main()
