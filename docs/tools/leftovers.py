#!/usr/bin/env python3
"""Checks docs/failures.md: that the comments of sai.h say what its tables say calls leave behind.

usage: leftovers.py ROOT

The words in bold in a row must be, each whole, in the comment of each function that the row names, or in what the
header says about all functions of its section.
"""

import re
import sys
from pathlib import Path

import header

ROW = re.compile(r"^\| (.*?) \| (`sai_.*`) \|$", re.MULTILINE)
BOLD = re.compile(r"\*\*(.+?)\*\*")


def said_by_function(sections):
    said = {}
    for section in sections:
        for entry in section.entries:
            comment = entry.comment
            said[entry.name] = " ".join([*comment.text, *comment.params.values(), comment.result, *section.prose])
    return said


def problems_of(page, said):
    text = page.read_text()
    rows = list(ROW.finditer(text))
    if len(rows) < 10:
        yield f"{page.name}: too few rows found; is it still read rightly?"
    for row in rows:
        line = text.count("\n", 0, row.start()) + 1
        words = BOLD.findall(row.group(1))
        if not words:
            yield f"{page.name}:{line}: no words in bold"
        for name in re.findall(r"`(\w+)`", row.group(2)):
            for word in words:
                if word not in said.get(name, ""):
                    yield f"{page.name}:{line}: the comment of {name} does not say '{word}'"


def main(arguments):
    if len(arguments) != 1:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    root = Path(arguments[0])
    _, sections = header.read(root / "include/sai.h")
    problems = list(problems_of(root / "docs/failures.md", said_by_function(sections)))
    print("\n".join(problems) or "Every function says what it can leave behind.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
