#!/usr/bin/env python3
"""Writes the manual pages from include/sai.h: a page for each function and variable, sai(7), sai-index(7), and
swsdk(7) with the functions of the Chip SDK that these pages name, and a page for each task of docs/tasks.

usage: manual.py DIRECTORY [VERSION [DOCUMENTS]]

Makes DIRECTORY/man1, man3 and man7. DOCUMENTS is where messages.md is installed, below the installation's prefix.

It is an error when a comment of the header does not document an argument, a result or an unusual end of a message, or
when it refers to text that is not on its page.
"""

import re
import sys
from pathlib import Path

import function_page
import markdown
import messages
import results
import roff
import sdk
import sources
from reference import Reference

ROOT = sources.repository()
TASKS = sorted((ROOT / "docs/tasks").glob("*.md"))
# Those that take something away, and what each is used for.
ENDING_VERBS = {
    "remove": "a member leaves what it was added to",
    "del": "an entry leaves a table, or a member a group, by the key with which it was added",
    "delete": "a route, an interface, a translation or learned addresses go, by their key",
    "destroy": "an object with members or entries of its own goes, with them",
    "unset": "a setting goes, found by the index or session that the setter gave or got",
    "clear": "all of one kind go, those of a port or of the unit",
    "clean": "counters go back to 0",
    "reset": "a port is no longer isolated from any other",
    "detach": "something is taken off what it is attached to and stays itself; for trunks, the module ends",
    "disable": "the chip ignores the limits that it has",
}
# Words that lead nowhere.
COMMON = set("a after again all an and another any are as at be been by each for from goes has have in into is it its no"
             " not of on one or other sai so than that the their them then to up whatever what when where whether which"
             " whose with would".split())
# What readers may call it, and the word of the pages.
ALSO_SAID = {"aggregation": "trunk", "bond": "trunk", "event": "service", "flush": "deletes", "gateway": "subnet",
             "hits": "hit", "lag": "trunk", "mtu": "frame", "neighbor": "host", "pvid": "untagged", "statistics": "stat"}


def shown_tables():
    """The names of the tables that saish shows."""
    source = (ROOT / "swsdk/api/show.cpp").read_text()
    return ", ".join(re.findall(r'{"(\w+)", ', source.partition("constexpr Table tables[] = {")[2]))


def overview(reference, version):
    lines = [roff.title("sai", 7, version), ".SH NAME"]
    lines += [r"sai \- the functions of libsai, by what they are about", ".SH SYNOPSIS", ".B #include <sai.h>"]
    lines += [".PP", r"\fBcc\fR program.c \fB$(pkg\-config \-\-cflags \-\-libs sai)\fR", ".SH DESCRIPTION"]
    for i, paragraph in enumerate(reference.intro.text):
        if not paragraph.startswith("- "):
            lines += ([".PP"] if i else []) + [roff.prose(paragraph)]
            continue
        for point in re.split(r"(?:^| )- (?=[A-Z`])", paragraph)[1:]:
            lines += [r".IP \(bu 2", roff.prose(point)]
    for section in reference.sections:
        named = [e for e in section.entries if e.kind != "type"]
        lines += [f".SS {section.title}"]
        for paragraph in section.prose:
            lines += [roff.prose(paragraph), ".PP"]
        if lines[-1] == ".PP":
            lines.pop()
        for entry in named:
            lines += [".TP", f".BR {entry.name} (3)", roff.sentence(roff.first_sentence(entry.comment.text[0]))]
    tasks = [f".BR sai\\-{roff.escaped(page.stem)} (7)," for page in TASKS]
    commands = [".BR saish (1),", ".BR swsdk\\-switch (1)"]
    return lines + [".SH SEE ALSO", ".BR sai\\-index (7),", *tasks, ".BR swsdk (7),", *commands]


def permuted_index(reference, version):
    """Every word of the names and first sentences of functions and of the headings of tasks, with those that have it;
    and the verbs."""
    lines = [r"'\" t", roff.title("sai-index", 7, version), ".SH NAME"]
    lines += [r"sai\-index \- words of the functions of libsai, and their verbs", ".SH VERBS"]
    lines += ["Each function has one name; what takes something away may have any of these verbs in it:"]
    lines += [".ad l", ".TS", "nokeep;", "lb lb lb", "l lx l."]
    lines += ["Verb\tWhat it is used for\tFunctions"]
    for verb, use in ENDING_VERBS.items():
        names = sorted(name for name in roff.NAMES if verb in name.split("_"))
        if not names:
            reference.problems.append(f"no function has the verb {verb}")
        lines += [f"{verb}\tT{{", roff.prose(use), "T}\tT{", ",\n".join(map(markdown.breakable, names)), "T}"]
    lines += [".TE", ".ad b", ".SH INDEX"]
    words = {}
    said = {name: name.replace("_", " ") + " " + roff.first_sentence(reference.entries[name].comment.text[0])
            for name in roff.NAMES}
    for page in TASKS:
        said[f"sai-{page.stem}(7)"] = " ".join(re.findall(r"^#+ (.*)", page.read_text(), re.MULTILINE))
    for name, text in said.items():
        for word in {w.lower() for w in re.findall(r"(?<![\w'])[A-Za-z][A-Za-z0-9]+(?![\w'])", text)}:
            words.setdefault(word, set()).add(name)
    for word, word_here in ALSO_SAID.items():
        words[word] = words.get(word, set()) | words[word_here]
    for word, names in sorted(words.items()):
        if word not in COMMON and len(names) <= 25:
            lines += [".TP", f".B {roff.escaped(word)}", ",\n".join(map(markdown.breakable, sorted(names)))]
    return lines + [".SH SEE ALSO", ".BR sai (7)"]


def codes(reference):
    """The SDK's codes, with the library's code and the SDK's text of each."""
    lines = [".TS", "lb lb lb", "l l l.", "Code\tResult\tText"]
    for number, (text, own) in enumerate(messages.reasons()[:-1]):
        lines.append(f"{results.SDK_NAMES.get(-number, roff.escaped(str(-number)))}\t{own}\t{text}")
    return lines + [".TE"]


def sdk_functions(reference, version):
    """The functions of the Chip SDK that the library calls: where the pages lead that name them."""
    lines = [r"'\" t", roff.title("swsdk", 7, version), ".SH NAME"]
    lines += [r"swsdk \- the functions of the Chip SDK that libsai calls", ".ad l", ".SH DESCRIPTION"]
    lines += ["Pages of", ".BR sai (7)", "name them where they fail. The vendor documents them; this page tells what",
              "they are about, and whose failures they are.", "Each answers 0 or a negative code."]
    callers = results.callers()
    known = sdk.functions()
    if missing := sorted(callers.keys() - known.keys()):
        reference.problems.append(f"swsdk/include does not declare {', '.join(missing)}")
        return lines
    file = None
    named = {name for text in reference.texts() for name in re.findall(r"\w+", text)}
    for name in sorted(callers.keys() | (named & known.keys()), key=lambda name: (known[name].header or "~", name)):
        function = known[name]
        if function.header != file:
            file = function.header
            lines += [f".SS <{file}>", roff.prose(function.about)] if file else [".SS Declared by no header"]
        lines += [".TP", f".B {name}", markdown.breakable(roff.prose(function.prototype)), ".br"]
        if function.comment:
            lines += [roff.prose(function.comment), ".br"]
        if name in callers:
            lines += ["Called by", ",\n".join(rf"\fB{caller}\fR(3)" for caller in sorted(callers[name])) + "."]
    return lines + [".SH CODES", *codes(reference), ".SH SEE ALSO", ".BR sai (7)"]


def task(reference, page, version):
    """A page of docs/tasks."""
    text = page.read_text()
    title = text.partition("\n")[0].lstrip("# ")
    body = markdown.roff(text)
    names = sorted(set(re.findall(r"\b\w+\b", text)) & roff.NAMES)
    lines = [r"'\" t", roff.title(f"sai-{page.stem}", 7, version)]
    lines += [".SH NAME", rf"sai\-{roff.escaped(page.stem)} \- {roff.escaped(title[0].lower() + title[1:])}", *body]
    return lines + [".SH SEE ALSO", *roff.listed_pages([*((name, 3) for name in names), ("sai", 7)])]


def main(arguments):
    if len(arguments) not in (1, 2, 3):
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    directory = Path(arguments[0])
    version = arguments[1] if len(arguments) > 1 else ""
    documents = arguments[2] if len(arguments) > 2 else "share/doc/sai"
    try:
        reference = Reference(ROOT / "include/sai.h", documents)
    except messages.Mismatch as mismatch:
        print(mismatch, file=sys.stderr)
        return 1
    roff.NAMES.update(name for name, entry in reference.entries.items() if entry.kind != "type")
    pages = {f"man3/{name}.3": function_page.page(reference, reference.entries[name], version)
             for name in sorted(roff.NAMES)}
    pages["man7/sai.7"] = overview(reference, version)
    pages |= {f"man7/sai-{page.stem}.7": task(reference, page, version) for page in TASKS}
    pages["man7/sai-index.7"] = permuted_index(reference, version)
    pages["man7/swsdk.7"] = sdk_functions(reference, version)
    for command in (ROOT / "docs").glob("*.1"):
        page = command.read_text().replace("@DATE@", roff.date()).replace("@VERSION@", version)
        page = page.replace("@TABLES@", roff.prose(shown_tables()))
        pages[f"man1/{command.name}"] = [roff.UNHYPHENATED, *page.splitlines()]
    if reference.problems:
        print("\n".join(reference.problems), file=sys.stderr)
        return 1
    for name, lines in pages.items():
        path = directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(lines) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
