#!/usr/bin/env python3
"""Checks the numbers of a page's table of limits against the virtual chip's sources, using the compiler.

usage: limits.py PAGE CHIP_PARENT COMPILER

A row's last cell names the constant, as `Trunks::capacity`.
"""

import re
import subprocess
import sys
from pathlib import Path

ROW = re.compile(r"^\| .* \| (\d+) \| `(\w+::\w+)` \|$", re.MULTILINE)
HEAD = "| What | How many | In the sources |\n|---|---|---|\n"


def main(arguments):
    if len(arguments) != 3:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    page, parent, compiler = Path(arguments[0]), Path(arguments[1]), arguments[2]
    table = page.read_text().split(HEAD)[1].split("\n\n")[0]
    rows = ROW.findall(table)
    if len(rows) != len(table.splitlines()):
        print(f"{page}: a row of the limits names no constant")
        return 1
    source = '#include "chip/chip.h"\n'
    source += "".join(f'static_assert(chip::{name} == {number}, "{name}");\n' for number, name in rows)
    command = [compiler, "-std=c++20", "-fsyntax-only", "-I", str(parent), "-x", "c++", "-"]
    done = subprocess.run(command, input=source, text=True, capture_output=True, timeout=60)
    if done.returncode:
        print(f"{page}: a limit is another one in the sources:\n{done.stderr}")
    return done.returncode


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
