#!/usr/bin/env python3
"""Checks all pages: that their links have targets, and that the names in them exist.

usage: links.py ROOT
       links.py --installed DIRECTORY

- A link to a file leads to one, and its anchor to a heading.
- A name in backticks that looks like one of the library's, the virtual chip's or the SDK's is in their headers; not
  checked of installed pages.
"""

import re
import subprocess
import sys
from pathlib import Path

FENCED = re.compile(r"^( *)```.*?^\1```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\[[^]]*\]\(([^)\s]+)\)")
SPAN = re.compile(r"`([^`\n]+)`")
NAME = re.compile(r"(?:sai|swsdk|bcm|soc|SAI|SWSDK|BCM)_\w*[A-Za-z0-9]")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)


def without_code(text):
    """The text with fenced code replaced by blank lines, so that line numbers do not change."""
    return FENCED.sub(lambda match: "\n" * match.group().count("\n"), text)


def anchors(path):
    """The anchors of a page's headings, as the usual Markdown viewers make them."""
    found = set()
    for heading in HEADING.findall(without_code(path.read_text())):
        slug = re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")
        copies = sum(1 for anchor in found if re.fullmatch(re.escape(slug) + r"(-\d+)?", anchor))
        found.add(f"{slug}-{copies}" if slug in found else slug)
    return found


def pages(root):
    listed = subprocess.run(["git", "-C", root, "ls-files", "--cached", "--others", "--exclude-standard", "*.md"],
                            capture_output=True, text=True)
    if listed.returncode == 0:
        return [root / name for name in listed.stdout.splitlines()]
    return [path for path in root.rglob("*.md") if "build" not in path.relative_to(root).parts]


def known_names(root):
    words = set()
    for directory in ("include", "swsdk/include"):
        for path in (root / directory).rglob("*.h"):
            words |= set(re.findall(r"\w+", path.read_text()))
    return words


def problems_of(page, root, known):
    text = without_code(page.read_text())

    def at(match):
        return f"{page.relative_to(root)}:{text.count(chr(10), 0, match.start()) + 1}"

    for match in LINK.finditer(text):
        target, _, anchor = match.group(1).partition("#")
        if re.match(r"[a-z]+:", target):
            continue
        path = (page.parent / target).resolve() if target else page
        if not path.exists():
            yield f"{at(match)}: there is no {target}"
        elif anchor and (path.suffix != ".md" or anchor not in anchors(path)):
            yield f"{at(match)}: {target or page.name} has no heading #{anchor}"
    for match in SPAN.finditer(text):
        name = match.group(1).removesuffix("()")
        if known and NAME.fullmatch(name) and name not in known:
            yield f"{at(match)}: no header has {name}"


def main(arguments):
    is_installed = arguments[:1] == ["--installed"]
    if len(arguments) != (2 if is_installed else 1):
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    root = Path(arguments[-1]).resolve()
    found = sorted(root.rglob("*.md")) if is_installed else pages(root)
    if root / "README.md" not in found:
        print("README.md is not among the pages; are they still found?")
        return 1
    known = set() if is_installed else known_names(root) | {folder.name for folder in (root / "python").glob("*/")}
    problems = [problem for page in found for problem in problems_of(page, root, known)]
    print("\n".join(problems) if problems else f"{len(found)} pages")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
