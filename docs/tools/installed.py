#!/usr/bin/env python3
"""Writes README.md and the pages of docs as they are installed, where most of the source tree is missing.

usage: installed.py DIRECTORY HEADERS

Makes DIRECTORY/README.md and DIRECTORY/docs. HEADERS is where the headers are installed, relative to README.md. A link
to a header leads there; links to pages and examples stay; a link to any other file becomes plain text.
"""

import os
import re
import sys
from pathlib import Path

import links
import markdown
import sources

ROOT = sources.repository()
CODE_OR_LINK = re.compile(f"{links.FENCED.pattern}|{markdown.LINK.pattern}", links.FENCED.flags)


def pages():
    docs = ROOT / "docs"
    found = [ROOT / "README.md", *docs.glob("*.md"), *docs.glob("tasks/*.md")]
    return [page for page in found if not page.name.endswith(".in.md")]


def installed(page, found, headers):
    """The text of a page, where `found` are all pages."""
    def link(match):
        _, text, target = match.groups()
        if target is None or re.match(r"[a-z]+:|#", target):
            return match[0]
        path = Path(os.path.normpath(page.parent / target.partition("#")[0]))
        if path in found or path.is_relative_to(ROOT / "examples"):
            return match[0]
        for folder in (ROOT / "include", ROOT / "swsdk/include"):
            if path.is_relative_to(folder):
                to_readme = "../" * len(page.parent.relative_to(ROOT).parts)
                return f"[{text}]({to_readme}{headers}/{path.relative_to(folder)})"
        return text

    return CODE_OR_LINK.sub(link, page.read_text())


def main(arguments):
    if len(arguments) != 2:
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    directory, headers = Path(arguments[0]), arguments[1]
    found = pages()
    for page in found:
        path = directory / page.relative_to(ROOT)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(installed(page, found, headers))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
