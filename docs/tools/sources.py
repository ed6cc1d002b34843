"""Reads the library's sources: which messages there are, and which exported functions can log each."""

import re
from collections import defaultdict
from dataclasses import dataclass, field
from pathlib import Path

# The functions that log a message whose text is in the call, and their levels.
LEVELS = {
    "failed": "errors",
    "log_if_failed": "errors",
    "result": "errors",
    "sai_err": "errors",
    "sai_warn": "warnings",
    "sai_notice": "notifications",
    "sai_info": "informational",
    "trace": "debugging",
    "sai_debug": "debugging",
    "printf": "standard output",
}

# Calls whose formats make commands and numbers, not messages.
NO_MESSAGES = {"snprintf", "print", "run"}

# What sai_port_stat_show() prints on request.
PRINTED = {r"%8u\t%s (stat %d)\r\n", r"0x%08x%08x\t%s (stat %d)\r\n"}

# The helpers behind LEVELS, and the log itself: the texts in them are their callers'.
HELPERS = {"core/result.h", "core/result.cpp", "core/log.h", "core/log.cpp", "core/format.h"}

TOKEN = re.compile(
    r"""(?P<space>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*)
      |(?P<string>"(?:[^"\\]|\\.)*")
      |(?P<name>[A-Za-z_]\w*)
      |(?P<other>'(?:[^'\\]|\\.)*'|\d[\w.']*|::|->|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
CLOSING = {"(": ")", "{": "}", "[": "]"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    line: int


@dataclass
class Definition:
    """A function, a variable or a record, with what its text contains."""

    file: str
    name: str
    is_method: bool
    messages: list = field(default_factory=list)  # (text, level, line)
    names: set = field(default_factory=set)
    members: set = field(default_factory=set)  # names behind "." and "->"


def tokens_of(text):
    line = 1
    for match in TOKEN.finditer(text):
        if match.lastgroup != "space":
            yield Token(match.lastgroup, match.group(), line)
        line += match.group().count("\n")


def matching(tokens, at):
    """Where the bracket at `at` is closed."""
    depth = 0
    for i in range(at, len(tokens)):
        if tokens[i].text in CLOSING and tokens[i].kind == "other":
            depth += 1
        elif tokens[i].text in CLOSING.values() and tokens[i].kind == "other":
            depth -= 1
            if depth == 0:
                return i
    raise ValueError(f"line {tokens[at].line}: '{tokens[at].text}' is never closed")


def without_prefix(tokens):
    """A declaration without "template <...>" and "[[...]]"."""
    i = 0
    while i < len(tokens):
        if tokens[i].text == "template":
            depth = 0
            i += 1
            while True:
                depth += {"<": 1, ">": -1}.get(tokens[i].text, 0)
                i += 1
                if depth == 0:
                    break
        elif tokens[i].text == "[" and tokens[i + 1].text == "[":
            i = matching(tokens, i) + 1
        else:
            break
    return tokens[i:]


def declared_name(head):
    """The name that a declaration, up to its first bracket or "=", declares; and whether it is a function."""
    for i, token in enumerate(head):
        if token.kind == "other" and token.text in "({=[":
            if i and head[i - 1].kind == "name":
                return head[i - 1].text, token.text == "("
            return None, False
    return None, False


def contents(definition, tokens):
    """Fills in what a definition says."""
    open_calls = []
    i = 0
    while i < len(tokens):
        token = tokens[i]
        before = tokens[i - 1].text if i else ""
        if token.kind == "string":
            text = token.text[1:-1]
            while i + 1 < len(tokens) and tokens[i + 1].kind == "string":
                i += 1
                text += tokens[i].text[1:-1]
            caller, argument = open_calls[-1] if open_calls else ("", 0)
            if caller in LEVELS:
                # A text behind the format is one of its arguments.
                if argument == (1 if caller in ("failed", "log_if_failed", "result") else 0) and text not in PRINTED:
                    definition.messages.append((text, LEVELS[caller], token.line))
            elif "%" in text and " " in text and caller not in NO_MESSAGES and definition.file not in HELPERS:
                definition.messages.append((text, "errors", token.line))  # a format on its way to sai_err()
        elif token.kind == "name":
            (definition.members if before in (".", "->") else definition.names).add(token.text)
        elif token.text in CLOSING:
            open_calls.append((before, 0))
        elif token.text in CLOSING.values() and open_calls:
            open_calls.pop()
        elif token.text == "," and open_calls:
            open_calls[-1] = (open_calls[-1][0], open_calls[-1][1] + 1)
        i += 1


def definitions_of(file, tokens, in_record=False):
    i = 0
    while i < len(tokens):
        start = i
        while i < len(tokens) and tokens[i].text not in (";", "{"):
            i = matching(tokens, i) + 1 if tokens[i].text in ("(", "[") else i + 1
        if i == len(tokens):
            return
        head = without_prefix(tokens[start:i])
        first = [token.text for token in head if token.kind != "string"][:2]
        if tokens[i].text == "{":
            end = matching(tokens, i)
            if first[:1] in (["namespace"], ["extern"]) and not any(t.text == "(" for t in head):
                yield from definitions_of(file, tokens[i + 1 : end])
                i = end + 1
                continue
            if first[:1] in (["struct"], ["class"], ["union"]):
                yield from definitions_of(file, tokens[i + 1 : end], in_record=True)
            name, is_function = declared_name(without_prefix(tokens[start : i + 1]))
            if first[:1] == ["enum"] or first[:1] in (["struct"], ["class"], ["union"]):
                name = None
            i = end + 1
            if not is_function:
                while tokens[i].text != ";":
                    i += 1
                i += 1
            if name:
                definition = Definition(file, name, in_record)
                contents(definition, without_prefix(tokens[start:i]))
                yield definition
        else:
            i += 1
            name, is_function = declared_name(without_prefix(tokens[start:i]))
            if name and not is_function and first[:1] not in (["using"], ["static_assert"]):
                definition = Definition(file, name, in_record)
                contents(definition, without_prefix(tokens[start:i]))
                yield definition


def read(source_dir):
    """All definitions of the library, with the headers and sources that contain them."""
    found = []
    includes = {}
    for path in sorted([*source_dir.rglob("*.h"), *source_dir.rglob("*.cpp")]):
        file = path.relative_to(source_dir).as_posix()
        text = path.read_text()
        includes[file] = set(re.findall(r'#include "([^"]+)"', text))
        found += definitions_of(file, [t for t in tokens_of(text) if t.kind != "space"])
    return found, includes


@dataclass
class Message:
    text: str
    level: str
    functions: set = field(default_factory=set)
    places: list = field(default_factory=list)  # file and line


def messages(source_dir, exported):
    """The messages, by their text and level, each with the exported functions from which its place can be reached."""
    definitions, includes = read(source_dir)
    by_file = defaultdict(lambda: defaultdict(list))
    for definition in definitions:
        by_file[definition.file][definition.name].append(definition)
    public = {d.name: d for d in definitions if d.name in exported and d.file.endswith(".cpp")}

    def visible(file):
        """The file itself, the headers that it includes, and their sources."""
        yield file
        for header in includes[file]:
            yield header
            yield header.removesuffix(".h") + ".cpp"

    def referred(definition):
        if definition.file in HELPERS:
            return
        for name in definition.names | definition.members:
            if name in public:
                yield public[name]
                continue
            for file in visible(definition.file):
                hits = [d for d in by_file[file].get(name, []) if d.is_method == (name in definition.members)]
                if hits:
                    yield from hits
                    break

    table = {}
    for definition in definitions:
        for text, level, line in definition.messages:
            message = table.setdefault((text, level), Message(text, level))
            message.places.append((definition.file, line))
    for name, root in public.items():
        reached = {id(root)}
        waiting = [root]
        while waiting:
            definition = waiting.pop()
            for text, level, _ in definition.messages:
                table[text, level].functions.add(name)
            for other in referred(definition):
                if id(other) not in reached:
                    reached.add(id(other))
                    waiting.append(other)
    return sorted(table.values(), key=lambda m: m.places)


def repository():
    return Path(__file__).resolve().parents[2]
