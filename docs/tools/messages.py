#!/usr/bin/env python3
"""The index of log messages, docs/messages.md: its rows come from the library's sources, its prose from messages.in.md.

usage: messages.py write          writes docs/messages.md
       messages.py check          says whether it is what "write" would write
       messages.py find LINE      tells what to do about a line of a log
       messages.py program FILE [VERSION]
                                  writes the program sai-messages, which tells that where there are no sources

In messages.in.md, a comment of HTML stands for a table of messages:

    <!-- messages
    Failed to create vlan *            all whose text is so; "*" is any text
    %s group %d %s failed: %s => sai_fp_ospf_ttl1_set
                                       of the functions from which its place can be reached, these alone can log it
    debugging: *                       of this level, all that no line before has taken
    -->

A line takes failures unless it names the level of traces. Every message belongs to one line, every line has a message.
"""

import fnmatch
import functools
import pprint
import re
import sys
from pathlib import Path

import header
import log_lines
import sources

ROOT = sources.repository()
WORDS = ROOT / "docs/messages.in.md"
INDEX = ROOT / "docs/messages.md"
TABLE = re.compile(r"<!-- messages\n(.*?)-->\n", re.DOTALL)
NOTICE = "<!-- Written by docs/tools/messages.py from the sources and messages.in.md. Change those. -->\n"


class Mismatch(Exception):
    """The page and the sources do not match."""


def all_messages():
    _, sections = header.read(ROOT / "include/sai.h")
    functions = {entry.name for entry in header.entries(sections, "function")}
    return sources.messages(ROOT / "src", functions)


def shown(text):
    """A message as it is in a log: without newlines."""
    return re.sub(r"(\\[rn])+$", "", text)


def lines_of(table):
    for line in table.splitlines():
        pattern, _, only = line.partition(" => ")
        yield line, pattern, only.split()


def selected(pattern, messages, taken):
    """The messages that a line stands for. Only lines for traces skip what other lines have taken."""
    traces = pattern.startswith("debugging: ")
    # Only "*" is special: messages have brackets and question marks of their own.
    escaped = re.sub(r"([\[\]?])", r"[\1]", pattern.removeprefix("debugging: "))
    for message in messages:
        if (message.level == "debugging") == traces and fnmatch.fnmatchcase(shown(message.text), escaped):
            if not (traces and id(message) in taken):
                yield message


def assign(words, messages):
    """The messages of each table, and the mismatches."""
    problems = []
    taken = {}
    tables = []
    for table in TABLE.findall(words):
        rows = []
        tables.append(rows)
        for line, pattern, only in lines_of(table):
            hits = list(selected(pattern, messages, taken))
            if not hits:
                problems.append(f"messages.in.md: no message in src/ is '{line}'")
            for message in hits:
                if id(message) in taken:
                    problems.append(f"messages.in.md: '{line}' and '{taken[id(message)]}' both take '{message.text}'")
                    continue
                taken[id(message)] = line
                if unknown := set(only) - message.functions:
                    problems.append(f"messages.in.md: '{line}': cannot be logged by {', '.join(sorted(unknown))}")
                if only:
                    message.functions &= set(only)
                rows.append(message)
    for message in messages:
        file, number = message.places[0]
        if id(message) not in taken:
            problems.append(f"src/{file}:{number}: no row of docs/messages.in.md takes '{message.text}'")
        if not message.functions:
            problems.append(f"src/{file}:{number}: no exported function leads to '{message.text}'")
    return tables, problems


def reasons():
    """The SDK's texts, and the result that each becomes."""
    texts = re.findall(r'literal\("(.*?)"\)', (ROOT / "swsdk/api/error.cpp").read_text())
    codes = re.findall(r"^ +(SAI_E_\w+),", (ROOT / "src/core/result.cpp").read_text(), re.MULTILINE)[::-1]
    return list(zip(texts, [*codes, "SAI_E_FAIL"], strict=True))


@functools.cache
def index():
    """The messages, assigned, and the text of the index."""
    words = WORDS.read_text()
    messages = all_messages()
    if len(messages) < 200:
        raise Mismatch("too few messages found in src/; is it still read rightly?")
    tables, problems = assign(words, messages)
    if re.findall(r"^\| (.*?) \| `(SAI_E_\w+)`", words, re.MULTILINE) != reasons():
        problems.append("messages.in.md: its reasons and results are not those of the sources")
    for line, _ in harmless(words):
        hits = [m for m in messages if log_lines.pattern_of(shown(m.text)).search(line.replace("*", "0"))]
        if max((log_lines.fixed(shown(m.text)) for m in hits), default=0) < 12:
            problems.append(f"messages.in.md: no message in src/ makes the harmless line '{line}'")
    if problems:
        raise Mismatch("\n".join(problems))

    rendered = []
    for rows in tables:
        lines = ["| Text | Level | Function |", "|---|---|---|"]
        for message in rows:
            functions = ", ".join(f"`{name}`" for name in sorted(message.functions))
            lines.append(f"| `{shown(message.text)}` | {message.level} | {functions} |")
        rendered.append("\n".join(lines) + "\n")
    tables_left = iter(rendered)
    return messages, NOTICE + TABLE.sub(lambda _: next(tables_left), words), tables


def by_function():
    """What each function can log: texts and levels."""
    found = {}
    for message in index()[0]:
        for name in message.functions:
            found.setdefault(name, []).append((shown(message.text), message.level))
    return found


def finder_rows():
    """What sai-messages knows: of each message its advice, of each reason its meaning, and the lines without harm."""
    _, _, tables = index()
    text = WORDS.read_text()
    rows = []
    for words, messages in zip(TABLE.split(text)[::2], tables):
        title, *advice = words[words.rindex("\n##") :].strip().lstrip("# ").split("\n\n")
        rows += [{"text": shown(m.text), "level": m.level, "functions": sorted(m.functions), "title": title,
                  "advice": advice} for m in messages]
    reasons_ = re.findall(r"^\| (.*?) \| (`SAI_E_\w+` \(.*?\)) \| (.*) \|$", text, re.MULTILINE)
    return rows, reasons_, harmless(text)


def harmless(words):
    """The lines that need nothing, and why: the rows of that section."""
    section = words[words.index("## Lines that are harmless") :]
    return re.findall(r"^\| `(.*?)` \| (.*) \|$", section[: section.index("\n## ")], re.MULTILINE)


def program(version):
    """The text of sai-messages."""
    text = (ROOT / "docs/tools/sai-messages.in").read_text()
    module = (ROOT / "docs/tools/log_lines.py").read_text()
    rows, reasons_, harmless_ = finder_rows()
    parts = {"LOG_LINES": module[module.index("import functools") :].strip(), "ROWS": pprint.pformat(rows, width=118),
             "REASONS": pprint.pformat(reasons_, width=118), "HARMLESS": pprint.pformat(harmless_, width=118),
             "VERSION": version}
    return re.sub(r"@([A-Z_]+)@", lambda match: parts[match[1]], text)


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "find":
        return 0 if log_lines.tell(log_lines.Finder(*finder_rows()), arguments[1]) else 1
    if len(arguments) in (2, 3) and arguments[0] == "program":
        path = Path(arguments[1])
        path.write_text(program(arguments[2] if len(arguments) > 2 else ""))
        path.chmod(0o755)
        return 0
    if arguments not in (["write"], ["check"]):
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    try:
        messages, text, _ = index()
    except Mismatch as mismatch:
        print(mismatch)
        return 1
    if arguments == ["write"]:
        INDEX.write_text(text)
    elif not INDEX.exists() or INDEX.read_text() != text:
        print("docs/messages.md is not what the sources and messages.in.md say; run docs/tools/messages.py write")
        return 1
    print(f"{len(messages)} messages")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
