"""Reads include/sai.h: its functions, variables and types, each with its comment."""

import re
from dataclasses import dataclass, field

BANNER = re.compile(r"/\* -{5,} (.*?) -+ \*/")
COMMENT = re.compile(r"/\*\*(.*?)\*/\s*", re.DOTALL)
PROSE = re.compile(r"/\*\n(.*?)\*/", re.DOTALL)
DECLARATION = re.compile(r"(?:extern )?(?:SAI_API|typedef|enum|#define)\b")


@dataclass
class Comment:
    text: list = field(default_factory=list)  # paragraphs
    params: dict = field(default_factory=dict)
    result: str = ""


@dataclass
class Entry:
    kind: str  # function, variable, type
    name: str
    section: str
    code: str  # the declaration
    comment: Comment
    returns: str = ""
    params: list = field(default_factory=list)  # type and name


@dataclass
class Section:
    title: str
    prose: list = field(default_factory=list)  # what applies to all its functions
    entries: list = field(default_factory=list)


def paragraphs(text):
    lines = [re.sub(r"^\s*\* ?", "", line) for line in text.strip("\n").split("\n")]
    return [" ".join(p.split()) for p in re.split(r"\n\s*\n", "\n".join(lines)) if p.strip()]


def comment_of(text):
    comment = Comment()
    body, *tags = re.split(r"\n\s*\* @", "\n" + text)
    comment.text = paragraphs(body)
    for tag in tags:
        kind, rest = tag.split(None, 1)
        rest = " ".join(re.sub(r"^\s*\* ?", "", line) for line in rest.split("\n"))
        if kind == "param":
            name, said = rest.split(None, 1)
            comment.params[name] = " ".join(said.split())
        elif kind == "return":
            comment.result = " ".join(rest.split())
    return comment


def end_of_declaration(text, at):
    if text.startswith("#define", at):
        return text.index("\n", at)
    depth = 0
    for i in range(at, len(text)):
        depth += {"{": 1, "}": -1}.get(text[i], 0)
        if text[i] == ";" and depth == 0:
            return i + 1
    raise ValueError("a declaration has no end")


def entry_of(code, comment, section):
    if code.startswith(("SAI_API", "extern")):
        plain = " ".join(re.sub(r"^(?:extern )?SAI_API ", "", code).rstrip(";").replace(" SAI_PRINTF", "").split())
        function = re.fullmatch(r"(.*?)(\w+)\((.*)\)", plain)
        if not function:
            name = re.search(r"(\w+)(?:\[\w*\])?$", plain).group(1)
            return Entry("variable", name, section, plain, comment)
        returns, name, list_ = function.groups()
        params = []
        if list_ != "void":
            for param in list_.split(", "):
                match = re.fullmatch(r"(.*?)(\w+)(\[\d+\])?", param)
                params.append((param, match.group(2)) if match else ("...", "..."))
        return Entry("function", name, section, plain, comment, returns.strip(), params)
    name = re.search(r"#define (\w+)|\(\*(\w+)\)|enum (\w+)|struct (\w+)", code)
    return Entry("type", next(g for g in name.groups() if g), section, code, comment)


def read(path):
    """What applies to all functions, and the sections in their order."""
    text = path.read_text()
    intro = comment_of(re.sub(r"@file \S+", "", COMMENT.search(text).group(1)))
    sections = []
    at = text.index(BANNER.search(text).group())
    text = text[: text.rindex("#ifdef __cplusplus")]
    comment = Comment()
    while at < len(text):
        if banner := BANNER.match(text, at):
            sections.append(Section(banner.group(1).strip()))
            at = banner.end()
        elif found := COMMENT.match(text, at):
            comment = comment_of(found.group(1))
            at = found.end()
        elif prose := PROSE.match(text, at):
            sections[-1].prose += paragraphs(prose.group(1))
            at = prose.end()
        elif DECLARATION.match(text, at):
            end = end_of_declaration(text, at)
            if not text.startswith("#define SAI_PRINTF", at):
                sections[-1].entries.append(entry_of(text[at:end], comment, sections[-1].title))
            comment = Comment()
            at = end
        else:
            at += 1
    return intro, sections


def entries(sections, kind):
    return [entry for section in sections for entry in section.entries if entry.kind == kind]
