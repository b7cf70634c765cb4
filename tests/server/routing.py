#!/usr/bin/env python3
"""Runs a test on PostgreSQL and looks at every statement that it had prepared: whether the nodes that distribute.sql
makes could run it, each for itself. Keys, foreign keys and unique indexes are looked at likewise.

    routing.py DISTRIBUTE.SQL TEST...
"""

import json
import os
import pathlib
import re
import subprocess
import sys

from postgresql import Server

SCRIPT = pathlib.Path(sys.argv[1]).read_text()
PLACED_BY = dict(re.findall(r"create_distributed_table\('(\w+)', '(\w+)'", SCRIPT))  # a table and its column
UNTIED = set(re.findall(r"DROP CONSTRAINT (\w+)", SCRIPT))

# What has to ask every node, by how it begins.
ROWS = pathlib.Path(__file__).with_name("samples").joinpath("asks-every-node.txt").read_text().splitlines()
EVERYWHERE = [row.partition("~")[0] for row in ROWS if not row.startswith("#")]
# What only the test itself asks.
OF_TESTS = {"SELECT COUNT(*) FROM goal", "SELECT COUNT(*) FROM account WHERE name = $1",
            "SELECT COUNT(*) FROM invitation"}


class Session:
    def __init__(self, server):
        self.command = ["psql", "-qAtX", "-d", server.address(), "-v", "ON_ERROR_STOP=1"]
        self.schema = self.run("SELECT table_schema FROM information_schema.tables WHERE table_name = 'goal' LIMIT 1")

    def run(self, *commands):
        words = [word for command in commands for word in ("-c", command)]
        return subprocess.run(self.command + words, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()

    def statements(self):
        return json.loads(self.run("SELECT json_agg(DISTINCT query) FROM pg_stat_statements"))

    def plan(self, statement):
        """As it would be for values that nobody knows yet."""
        count = max(map(int, re.findall(r"\$(\d+)", statement)), default=0)
        values = f"({', '.join(['NULL'] * count)})" if count else ""
        return json.loads(self.run(f'SET search_path = "{self.schema}"', "SET plan_cache_mode = force_generic_plan",
                                   f"PREPARE it AS {statement}",
                                   f"EXPLAIN (VERBOSE, FORMAT JSON) EXECUTE it{values}"))[0]["Plan"]

    def keys(self):
        """Name, table and columns of whatever must be unique or refers to another table."""
        return json.loads(self.run(f"""
            SELECT json_agg(json_build_array(conname, conrelid::regclass::text, (SELECT json_agg(attname ORDER BY place)
                FROM unnest(conkey) WITH ORDINALITY AS part(number, place)
                JOIN pg_attribute ON attrelid = conrelid AND attnum = number)))
            FROM pg_constraint WHERE contype IN ('p', 'u', 'f') AND connamespace = '"{self.schema}"'::regnamespace"""))


def nodes(plan):
    yield plan
    for part in plan.get("Plans", []):
        yield from nodes(part)


def faults(statement, plan):
    """The tables that are read or added to without telling where."""
    for node in nodes(plan):
        table = node.get("Relation Name")
        if table not in PLACED_BY:
            continue
        if node["Node Type"] != "ModifyTable":
            conditions = " ".join(str(node.get(kind, "")) for kind in ("Index Cond", "Recheck Cond", "Filter"))
            # The planner knows what follows from the conditions on other tables.
            if not re.search(rf"\b{PLACED_BY[table]} = \$\d", conditions):
                yield f"{table} is read everywhere"
        elif node["Operation"] == "Insert":
            values = node["Plans"][0]["Output"][:1]  # of the first column, by which all tables are spread
            if node["Plans"][0]["Node Type"] == "Values Scan":
                values = set(re.findall(r"\(([^,()]+),", statement.partition("VALUES")[2]))
            if len(values) != 1 or not re.match(r"\$\d", *values):
                yield f"{table} gets rows of nobody knows whom"


def main():
    settings = "-c shared_preload_libraries=pg_stat_statements -c pg_stat_statements.max=50000" \
               " -c pg_stat_statements.track_utility=off -c track_activity_query_size=65536"
    with Server(settings=settings) as server:
        subprocess.run(["psql", "-qd", server.address(), "-c", "CREATE EXTENSION pg_stat_statements"], check=True)
        subprocess.run(sys.argv[2:], check=True, env=os.environ | {"TARVEX_TEST_POSTGRESQL": server.address()})
        session = Session(server)
        found, used, looked_at = [], set(), 0
        for statement in session.statements():
            if not re.search(rf"\b({'|'.join(PLACED_BY)})\b", statement) or statement in OF_TESTS:
                continue
            looked_at += 1
            wrong = list(faults(statement, session.plan(statement)))
            named = [beginning for beginning in EVERYWHERE if statement.startswith(beginning)]
            used.update(named)
            if wrong and not named:
                found.append(f"{'; '.join(wrong)}: {statement}")
        for name, table, columns in session.keys():
            if table in PLACED_BY and columns[0] != PLACED_BY[table] and name not in UNTIED:
                found.append(f"{name} does not begin with {PLACED_BY[table]}")
        found += [f"no such statement: {beginning}" for beginning in set(EVERYWHERE) - used]
        print("\n".join(found + [f"{looked_at} statements"]))
        sys.exit(bool(found) or looked_at < 30)


if __name__ == "__main__":
    main()
