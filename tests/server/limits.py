"""Compares the tables of docs/limits.md with the constants that they name, and misses none of what an operator meets;
then the numbers that docs/protocol.md tells.

usage: limits.py SOURCES
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
UNITS = {"KiB": 2**10, "MiB": 2**20, "GiB": 2**30, "min": 60, "days": 86400}
WHOLE = ("TarvexServer/http/Limits.h", "TarvexServer/store/Quotas.h")


def valued(source, name):
    """What the constant of that name is, in bytes or seconds."""
    text = re.sub("//.*", "", source.read_text())
    found = re.search(rf"([\w:]+) {name}(?:\s=\s+|\{{)([^;}}]+)\}}?;", text)
    assert found, f"{source} holds no {name}"
    terms = re.sub(r"(?<=\d)(?:'|[UL]+)|[\w:]+\((?=\d)|\)", "", found[2])
    if not re.fullmatch(r"[\d *]+", terms):
        return None  # another constant, which has a row of its own
    scale = {"std::chrono::milliseconds": 0.001, "std::chrono::minutes": 60}.get(found[1], 1)
    return eval(terms) * scale


named = set()
for line in (ROOT / "docs/limits.md").read_text().splitlines():
    for path, name in re.findall(r"`([\w/+]+\.(?:h|cpp)):(\w+)`", line):
        source = next(file for file in (ROOT / "TarvexServer" / path, ROOT / "TarvexCloud" / path) if file.exists())
        named.add((source, name))
        cells = [cell.strip() for cell in line.split("|")]
        said, unit = re.search(r"([\d,]+) ?(\w*)", cells[2] if len(cells) > 2 else line.split("have", 1)[1]).groups()
        said = int(said.replace(",", ""))
        assert valued(source, name) in (said, said * UNITS.get(unit, 1)), f"{path}: {name} is not {said} {unit}"
assert len(named) > 30, "the tables have another form now"
for path in WHOLE:
    for name in re.findall(r"\b(\w+)(?:\s=\s|\{)[^;]*;", (ROOT / path).read_text()):
        known = (ROOT / path, name) in named or name == "body"
        assert known, f"docs/limits.md misses {name} of {path}"

LIMITS = ROOT / WHOLE[0]
protocol = " ".join((ROOT / "docs/protocol.md").read_text().split())
for words in ("Head [head KiB] in [headTime s]; body", "in [bodyTime s]; [idleTime s] between requests; [handlerTime s] to",
              "[connectionsPerPeer] from one address", "read up to [discardedBody MiB]",
              "arrived in memory ([bodiesInMemory MiB])", "wait to be sent ([answersInMemory MiB]",
              "to be hashed ([waitingHashes],"):
    expected = re.sub(r"\[(\w+)( ?)(\w*)\]",
                      lambda it: f"{valued(LIMITS, it[1]) / UNITS.get(it[3], 1):g}{it[2]}{it[3]}", words)
    assert expected in protocol, f"docs/protocol.md does not say {expected!r}"
