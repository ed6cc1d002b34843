#!/usr/bin/env python3
"""Runs the examples of a page and compares their output with what the page shows.

usage: examples.py PAGE --saish SAISH --compile COMMAND... [--write]

- Each ```c block is part of one program of the page, in their order; a block with a main() of its own ends it. The
  ```text block behind the last one of a program is what it prints.
- Each ```saish block is part of one script of the page; one marked ```saish-new begins another. Lines that do not begin
  with a command's name are the output of the commands before them.

COMMAND compiles: it is given the source and "-o PROGRAM" before its options. Times in log lines are compared by their form only.
With --write the page gets the actual output.
"""

import argparse
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"^```(c|text|saish|saish-new)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
TIME = re.compile(r"\d{4}/\d\d/\d\d \d\d:\d\d:\d\d")
SHOWN_TIME = "2026/11/21 07:24:30"


def output_of(command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=60, **options)
    return done.returncode, TIME.sub(SHOWN_TIME, done.stdout)


def fail(page, text, at, said):
    raise SystemExit(f"{page}:{text.count(chr(10), 0, at) + 1}: {said}")


class Page:
    def __init__(self, path, saish, compiler):
        self.path, self.saish, self.compiler = path, saish, compiler
        self.text = path.read_text()
        self.changes = []  # start, end, text
        listed = output_of([saish, "-c", "help all"])[1]
        self.commands = set(re.findall(r"^  (\w+)", listed, re.MULTILINE))

    def compare(self, start, shown, came):
        if shown != came:
            self.changes.append((start, start + len(shown), came))

    def run_program(self, parts, shown_at, shown, work):
        source = "".join(part for _, part in parts)
        first = parts[0][0]
        (work / "page.c").write_text(source)
        compiler, *options = self.compiler
        code, said = output_of([compiler, str(work / "page.c"), "-o", str(work / "page"), *options])
        if code:
            fail(self.path, self.text, first, f"this program does not compile:\n{said}")
        code, came = output_of([str(work / "page")])
        if code:
            fail(self.path, self.text, first, f"this program ends with {code}:\n{came}")
        self.compare(shown_at, shown, came)

    def run_script(self, blocks, work):
        """Runs the commands of several blocks as one script, which the shell echoes, each with its output."""
        boundary = "# the next block of the page\n"
        script = boundary.join(self.inputs(block) for _, block in blocks)
        (work / "page.sai").write_text(script)
        code, came = output_of([self.saish, str(work / "page.sai")])
        if code:
            fail(self.path, self.text, blocks[0][0], f"this script ends with {code}:\n{came}")
        for (start, block), part in zip(blocks, came.split(boundary), strict=True):
            self.compare(start, block, part)

    def inputs(self, block):
        """The commands and comments of a block, and the blank lines that stand before one."""
        kept = ""
        blanks = ""
        for line in block.splitlines(keepends=True):
            if not line.strip():
                blanks += line
                continue
            if line.startswith("#") or line.split()[0] in self.commands:
                kept += blanks + line
            blanks = ""
        return kept

    def run(self, work):
        program, script = [], []
        for block in BLOCK.finditer(self.text):
            kind, body, start = block.group(1), block.group(2), block.start(2)
            if kind == "c":
                program.append((start, body))
            elif kind == "text" and program:
                self.run_program(program, start, body, work)
                program = []
            elif kind.startswith("saish"):
                if kind == "saish-new" and script:
                    self.run_script(script, work)
                    script = []
                script.append((start, body))
        if program:
            fail(self.path, self.text, program[0][0], "this program's output is not shown")
        if script:
            self.run_script(script, work)


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("\n\n")[1].removeprefix("usage: "))
    parser.add_argument("page", type=Path)
    parser.add_argument("--saish", required=True)
    parser.add_argument("--write", action="store_true")
    parser.add_argument("--compile", nargs=argparse.REMAINDER, required=True)
    arguments = parser.parse_args()
    page = Page(arguments.page, arguments.saish, arguments.compile)
    if not BLOCK.search(page.text):
        raise SystemExit(f"{arguments.page}: nothing to run")
    with tempfile.TemporaryDirectory() as work:
        page.run(Path(work))
    text = page.text
    for start, end, came in reversed(sorted(page.changes)):
        if arguments.write:
            text = text[:start] + came + text[end:]
        else:
            print(f"{arguments.page}:{text.count(chr(10), 0, start) + 1}: this is shown:\n{page.text[start:end]}")
            print(f"and this came:\n{came}")
    if arguments.write:
        arguments.page.write_text(text)
        return 0
    return 1 if page.changes else 0


if __name__ == "__main__":
    sys.exit(main())
