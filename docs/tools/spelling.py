#!/usr/bin/env python3
"""Checks the spelling of all pages, of sai.h and of the manual pages of commands, with hunspell and the words of WORDS.

usage: spelling.py ROOT [--write]

What stands in backticks and code blocks is no prose, nor are names and messages. With --write, WORDS gets what is unknown and
loses what is no longer used: read what came in before you commit it.
"""

import re
import subprocess
import sys
from pathlib import Path

import header
import links

WORDS = "docs/tools/words"
# Comments, code, targets of links, names, paths and conversions.
NO_PROSE = [re.compile(pattern, re.DOTALL) for pattern in (
    r"<!--.*?-->", r"`[^`]*`", r"\]\([^)]*\)", r"\b\w*[_0-9]\w*\b", r"#\w+", r"\b[a-z]+[A-Z]\w*", r"(?<!\w)[./~]\S*",
    r"%\S+")]
CODE_LINE = re.compile(r"^(?:    |\t).*$", re.MULTILINE)
WORD = re.compile(r"[A-Za-z]+(?:'[a-z]+)?")


def prose_of(text):
    for pattern in NO_PROSE:
        text = pattern.sub(" ", text)
    return text


def texts(root):
    for page in links.pages(root):
        # The index of messages is their texts, with errors that are meant, and what messages.in.md says.
        if page != root / "docs/messages.md":
            yield page, prose_of(CODE_LINE.sub(" ", links.without_code(page.read_text())))
    intro, sections = header.read(root / "include/sai.h")
    comments = [intro, *(entry.comment for section in sections for entry in section.entries)]
    said = [" ".join([*c.text, *c.params.values(), c.result]) for c in comments]
    said += [" ".join(section.prose) for section in sections]
    # What stands in quotes is a message, and some have errors that are meant.
    yield root / "include/sai.h", prose_of(re.sub(r'"[^"]*"', " ", "\n".join(said)))
    for page in sorted((root / "docs").glob("*.1")):
        text = re.sub(r"\\f[BIR]|\\\(\w\w|\\&", " ", page.read_text().replace(r"\-", "-"))
        text = re.sub(r"^\.nf.*?^\.fi|^\.(?:TH|B|BR|BI|IR|RI|I|RB)\b.*?$", " ", text, flags=re.MULTILINE | re.DOTALL)
        yield page, prose_of(re.sub(r"^\.\w+", " ", text, flags=re.MULTILINE))


def main(arguments):
    if len(arguments) not in (1, 2) or arguments[1:] not in ([], ["--write"]):
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    root = Path(arguments[0]).resolve()
    kept = root / WORDS
    words = set(kept.read_text().split()) if kept.exists() else set()
    where = {}
    for page, text in texts(root):
        for word in WORD.findall(text):
            where.setdefault(word, page.relative_to(root))
    checked = subprocess.run(["hunspell", "-d", "en_US", "-l"], input="\n".join(where), capture_output=True, text=True,
                             check=True)
    unknown = {word for word in checked.stdout.split() if word in where}
    if len(where) < 1000:
        print("too few words found; are the pages still read rightly?")
        return 1
    if arguments[1:]:
        kept.write_text("".join(f"{word}\n" for word in sorted(unknown, key=lambda word: (word.lower(), word))))
        return 0
    for word in sorted(unknown - words):
        print(f"{where[word]}: '{word}' is not a word that hunspell or {WORDS} has")
    for word in sorted(words - unknown):
        print(f"{WORDS}: '{word}' is not needed")
    return 1 if unknown != words else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
