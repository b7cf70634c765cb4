#!/usr/bin/env python3
"""Writes the files of a folder into C++ that makes them part of a program.

usage: tools/embed.py FOLDER TARGET.cpp HEADER NAMESPACE VARIABLE
"""

import pathlib
import sys


def literal(data):
    """The bytes in lines of a string literal, in octal so that no digit behind one is taken for part of it."""
    lines = (data[start:start + 40] for start in range(0, len(data), 40))
    return "\n".join('"' + "".join(f"\\{byte:03o}" for byte in line) + '"' for line in lines) or '""'


def main():
    if len(sys.argv) != 6:
        raise SystemExit(__doc__)
    folder, target, header, namespace, variable = sys.argv[1:]
    files = sorted(path for path in pathlib.Path(folder).rglob("*") if path.is_file())
    entries = "".join(f'{{"{path.relative_to(folder)}", std::string_view(\n{literal(path.read_bytes())},\n'
                      f"{path.stat().st_size})}},\n" for path in files)
    pathlib.Path(target).write_text(f'#include "{header}"\n\nnamespace {namespace} {{\n\n'
                                    f"const EmbeddedFiles {variable} = {{\n{entries}}};\n\n}}\n")


if __name__ == "__main__":
    main()
