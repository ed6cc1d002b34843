"""Reads the Chip SDK's headers: the prototype of each function, its comment, and what its header is about."""

import re
from dataclasses import dataclass

import sources

INCLUDE = sources.repository() / "swsdk/include"
# What the library declares itself, because no header of the SDK does.
UNDECLARED = sources.repository() / "src/core/sdk.h"
PROTOTYPE = re.compile(r"(?:^/\*\*((?:(?!\*/).)*)\*/\n)?^(?:extern )?((?:int|void|cmd_result_t) (\w+)\([^;{]*\));",
                       re.MULTILINE | re.DOTALL)
ABOUT = re.compile(r"@file \S+\n \* (.*?)(?:\n \*\n|\n? \*/)", re.DOTALL)


@dataclass
class Function:
    header: str
    about: str
    prototype: str
    comment: str


def plain(text):
    return " ".join(re.sub(r"^\s*\* ?", "", line) for line in (text or "").split("\n")).strip()


def functions():
    found = {}
    for path in [UNDECLARED, *sorted(INCLUDE.rglob("*.h"))]:
        if path.parent.name == "swsdk":
            continue
        text = path.read_text()
        about = ABOUT.search(text)
        if path == UNDECLARED:
            for prototype, name in re.findall(r"^(int (\w+)\(.*\));", text, re.MULTILINE):
                found[name] = Function("", "", prototype, "")
            continue
        for comment, prototype, name in PROTOTYPE.findall(text):
            found[name] = Function(path.relative_to(INCLUDE).as_posix(), plain(about.group(1)) if about else "",
                                   " ".join(prototype.split()), plain(comment))
    return found


def headers_of_constants():
    """The header that has each constant: macros and enumerators."""
    found = {}
    for path in sorted(INCLUDE.rglob("*.h")):
        if path.parent.name == "swsdk":
            continue
        for name in re.findall(r"^#define (\w+)|^ +(\w+) = ", path.read_text(), re.MULTILINE):
            found.setdefault(name[0] or name[1], path.relative_to(INCLUDE).as_posix())
    return found
