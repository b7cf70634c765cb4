#!/usr/bin/env python3
"""Compares the service's pages with its protocol, and a long history with a short one; prints the medians as JSON.

    bench/pages.py FOLDER SERVER
"""

import http.client
import os
import pathlib
import sqlite3
import tempfile
import time
import urllib.parse

from server import (CLIENT_CORE, FOLDER, GOALS_OF_PLACE, anew, in_turn, make_database, note, print_figures, read,
                    service)

SECONDS_PER_DAY = 24 * 60 * 60


def signed_in(server, account):
    """The cookie of a session."""
    connection = http.client.HTTPConnection("127.0.0.1", server.port)
    form = urllib.parse.urlencode({"login": f"account {account}", "password": "wheel of life"})
    connection.request("POST", "/sign-in", form, {"Content-Type": "application/x-www-form-urlencoded"})
    answer = connection.getresponse()
    assert answer.status == 303, answer.read()
    return answer.headers["Set-Cookie"].partition(";")[0]


def pages_anew(target, cookies):
    """The same page in so many spellings that none is still known when its own comes again."""
    mark = "&" if "?" in target else "?"
    return [f"GET {target}{mark}x={number} {cookie}" for number in range(1500 // len(cookies) + 1) for cookie in cookies]


def wheels(database):
    with service(database) as ours:
        cookies = [signed_in(ours, account) for account in range(32)]
        goals = [read(account) for account in range(32)]
        in_turn({"wheel-page/again": (ours, [f"GET /wheel {cookie}" for cookie in cookies]),
                 "wheel-page/goals-again": (ours, goals), "wheel-page/anew": (ours, pages_anew("/wheel", cookies)),
                 "wheel-page/goals-anew": (ours, anew(goals))}, connections=32, seconds=0.8)
        size = 0
        for path in ("/", "/style.css", "/icon.svg"):
            connection = http.client.HTTPConnection("127.0.0.1", ours.port)
            connection.request("GET", path)
            size += len(connection.getresponse().read())
        note("front-page", bytes=size)


def histories(database):
    today = int(time.time()) // SECONDS_PER_DAY
    with service(database) as ours, sqlite3.connect(database) as connection:
        cookie = signed_in(ours, 0)
        account = int(cookie.partition("=")[2].partition(".")[0])
        days = [(account, today - ago, sum((ago * (area + 3) % 101) << (7 * area) for area in range(8)))
                for ago in range(1, 3653)]
        connection.executemany("INSERT OR REPLACE INTO set_progress VALUES (?, 1, ?, ?)", days)
        connection.commit()
        in_turn({"progress-page/month": (ours, pages_anew("/progress?days=31", [cookie])),
                 "progress-page/ten-years": (ours, pages_anew("/progress?days=3653", [cookie]))},
                connections=4, seconds=0.8)


def main():
    os.sched_setaffinity(0, {CLIENT_CORE})
    with tempfile.TemporaryDirectory(dir=FOLDER) as folder:
        for measure in wheels, histories:
            database = pathlib.Path(folder) / f"{measure.__name__}.db"
            make_database(database, accounts=200, goals=GOALS_OF_PLACE)
            measure(database)
    print_figures()


if __name__ == "__main__":
    main()
