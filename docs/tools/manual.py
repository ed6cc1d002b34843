#!/usr/bin/env python3
"""Writes the manual pages from include/sai.h: a page for each function and variable, sai(7), sai-index(7), and
swsdk(7) with the functions of the Chip SDK that these pages name, and a page for each task of docs/tasks.

usage: manual.py DIRECTORY [VERSION [DOCUMENTS]]

Makes DIRECTORY/man1, man3 and man7. DOCUMENTS is where messages.md is installed, below the installation's prefix.

It is an error when a comment of the header does not document an argument, a result or an unusual end of a message, or
when it refers to text that is not on its page.
"""

import os
import re
import sys
import textwrap
import time
from pathlib import Path

import header
import markdown
import messages
import results
import sdk
import sources

ROOT = sources.repository()
TASKS = sorted((ROOT / "docs/tasks").glob("*.md"))
# Where a comment says "Arguments and results are those of" another function.
SAME = re.compile(r"Arguments and results are those of (\w+)\(\)\.?")
# The verbs at the end of names. Functions whose names are the same but for them belong together.
VERBS = ("add|remove|del|delete|create|destroy|set|unset|get|clear|clean|reset|enable|disable|init|detach|install|read|"
         "write|show|config|all")
VERB = re.compile(rf"(_(?:{VERBS}))+$")
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
# References to other text of the header, which is on another page.
POINTERS = re.compile(r"\b(?:(?:above|below)(?! \d)|th(?:is|ese) (?:section|header|comment)s?|the comment)\b")
# Where a message has the SDK's text, and what follows it.
BEHIND_THE_TEXT = re.compile(r"(?:: |failed )%s(.+)$")
TELLING = {".": ["full stop"], r"\n": ["newline"], r".\n": ["full stop", "newline"]}
RESULTS = re.compile(r"(?:Unless a comment says otherwise, t|\bT)he results are (.*?\.)(?= |$)")


# Words that lead nowhere.
COMMON = set("a all an and are as at be been by for from has have in into is it its no not of on one or other sai so"
             " than that the their them then to up what when where whether which whose with".split())


# Cases of the fault sweep that a reader cannot guess.
CASES = {
    "to an egress object": "in L3 egress mode, with a next hop that is made",
    "to an egress object that is there": "in L3 egress mode, with a next hop that another route has",
    "to an interface": "without L3 egress mode",
    "from an egress object": "in L3 egress mode",
    "from an interface": "without L3 egress mode",
    "over another": "in place of another route",
    "over a virtual port": "with a next hop behind a virtual port",
    "double-tagged": "with dtag",
    "in place of one": "there is an entry with the same key",
    "that is there": "the same route is there",
    "of one that is there": "the call was made before",
    "again into its VLAN": "another virtual port of its VLAN is there",
    "first": "as the first member of the group",
    "second": "when the group has a member",
    "last": "as the last member of the group",
}


def escaped(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text)


def roff(text):
    """Prose: names of functions, arguments and constants stand out, as they do in the header."""
    text = escaped(text)
    text = re.sub(r"`([^`]*)`", r"\\fI\1\\fR", text)
    text = re.sub(r"#(sai_\w+|SAI_\w+|hw_\w+)", r"\\fB\1\\fR", text)
    text = re.sub(r"\b(\w+)\(\)", lambda m: rf"\fB{m[1]}\fR(3)" if m[1] in NAMES else m[0], text)
    lines = textwrap.wrap(text, 78, break_long_words=False, break_on_hyphens=False)
    return "\n".join(re.sub(r"^([.'])", r"\\&\1", line) for line in lines)


def code(text):
    text = re.sub(r"#(?=sai_|SAI_|hw_)", "", text.replace("/**<", "/*").replace("/** ", "/* "))
    return [".nf", *(escaped(line) for line in text.split("\n")), ".fi"]


def first_sentence(text):
    sentence = re.match(r"(.*?[.:;])(?: |$)", text)
    return (sentence.group(1) if sentence else text).rstrip(".:;")


def synopsis(entry):
    if entry.kind == "variable":
        return [f".B extern {escaped(entry.code)};"]
    start = f"{entry.returns} {entry.name}("
    rest = ", ".join(declared.replace(" ", "\0") for declared, _ in entry.params) or "void"
    lines = textwrap.wrap(rest + ");", max(76 - len(start), 30))
    lines = [line.replace("\0", " ") for line in lines]
    return [".nf", f"\\fB{escaped(entry.returns)} {entry.name}\\fR({escaped(lines[0])}",
            *(" " * min(len(start), 40) + escaped(line) for line in lines[1:]), ".fi"]


def date():
    return time.strftime("%Y-%m-%d", time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time()))))


def ranges(numbers):
    """Such as "1-3, 5"."""
    found = []
    for number in numbers:
        if found and number == found[-1][1] + 1:
            found[-1][1] = number
        else:
            found.append([number, number])
    return ", ".join(f"{first}" if first == last else rf"{first}\-{last}" for first, last in found)


def shown_tables():
    """The names of the tables that saish shows."""
    source = (ROOT / "swsdk/api/show.cpp").read_text()
    return ", ".join(re.findall(r'{"(\w+)", ', source.partition("constexpr Table tables[] = {")[2]))


def listed_pages(pages):
    return [f".BR {name} ({number})," for name, number in pages[:-1]] + [f".BR {pages[-1][0]} ({pages[-1][1]})"]


def also_called(entry):
    """For "man -k": the other words for taking away, where the name has one of them."""
    own = set(entry.name.split("_"))
    if not own & ({"remove", "del", "delete", "destroy", "unset", "clear"}):
        return ""
    said = first_sentence(entry.comment.text[0]).lower()
    missing = [word for word in ("remove", "delete") if word not in said and word not in own]
    return f" ({', '.join(missing)})" if missing else ""


def sentence(text):
    return roff(text[:1].upper() + text[1:].rstrip(".") + ".")


class Reference:
    def __init__(self, header_file, documents):
        self.documents = documents
        self.intro, self.sections = header.read(header_file)
        self.entries = {e.name: e for s in self.sections for e in s.entries}
        self.section_of = {e.name: s for s in self.sections for e in s.entries}
        self.types = {e.name: e for e in header.entries(self.sections, "type")}
        self.logged = messages.by_function()
        self.errors = [m for m in messages.index()[0] if m.level == "errors"]
        self.results = results.rows(self.logged)
        self.constants = sdk.headers_of_constants()
        self.problems = [f"{name}: docs/results has nothing of a table that {call} finds full"
                         for name, call in results.without_full(self.logged)]
        self.problems += [f"{name}: no row tells what a failure of {call} leads to"
                          for name, call in results.without_row(self.results)]

    def documented(self, entry):
        """The comment with an entry's arguments and results: its own, or that of the entry to which it refers."""
        for paragraph in entry.comment.text:
            if same := SAME.search(paragraph):
                return self.entries[same.group(1)].comment
        return entry.comment

    def result_of(self, entry):
        own = self.documented(entry).result
        if own or entry.returns == "void":
            return own
        for paragraph in self.section_of[entry.name].prose:
            if told := RESULTS.search(paragraph):
                return told.group(1)
        return ""

    def arguments(self, entry):
        comment = self.documented(entry)
        for declared, name in entry.params:
            if name == "...":
                said = "what the conversions of the format ask for"
            else:
                said = comment.params.get(name, "")
            if not said and name == "unit":
                said = "number of the unit, from 0; sai_unit_get() tells it"
            if not said:
                self.problems.append(f"{entry.name}: nothing is said of its argument {name}")
            yield name, said
        for name in entry.comment.params:
            if name not in [n for _, n in entry.params]:
                self.problems.append(f"{entry.name}: has no argument {name}")

    def types_of(self, entry):
        """The records and enumerations that its call and its comment name, and those that these name."""
        comment = self.documented(entry)
        text = " ".join([entry.code, *comment.text, *comment.params.values(), comment.result])
        found = []
        waiting = re.findall(r"\w+", text)
        while waiting:
            name = waiting.pop(0)
            if name in self.types and self.types[name] not in found:
                found.append(self.types[name])
                waiting += re.findall(r"\w+", self.types[name].code)
        return found

    def check_results(self, entry):
        """Each code that its comment names has a row; what is said of a whole section need not hold for each function."""
        said = set(re.findall(r"(?<![\w-])-\d+\b", self.documented(entry).result))
        rows = " ".join(row.result for row in self.results[entry.name])
        for code in sorted(said - set(re.findall(r"-\d+", rows))):
            self.problems.append(f"{entry.name}: its comment names {code}, and docs/results has no such result")

    def headers_of(self, entry):
        """The SDK's headers whose constants a caller needs: those that are named for arguments and types."""
        named = [entry.comment, self.documented(entry), *(type_.comment for type_ in self.types_of(entry))]
        text = " ".join(said for comment in named for said in comment.params.values())
        constants = set(re.findall(r"\b(?:BCM_(?!E_)\w+|bcm[A-Z]\w+)", text)) & self.constants.keys()
        starts = re.findall(r"\b(BCM_\w+_)\*", text)
        constants |= {name for name in self.constants if name.startswith(tuple(starts))} if starts else set()
        return sorted({self.constants[name] for name in constants})

    def check_pointers(self, entry, lines):
        text = " ".join(" ".join(lines).split())
        for found in POINTERS.finditer(text):
            around = text[max(0, found.start() - 30) : found.end() + 10]
            self.problems.append(f"{entry.name}: '{around}' points to a place that its page does not have")

    def check_ends(self, entry):
        """Its comment says what follows the SDK's text in a message that does not end with it."""
        said = " ".join(entry.comment.text) + entry.comment.result
        for message in self.errors:
            behind = BEHIND_THE_TEXT.search(message.text)
            if not behind or entry.name not in message.functions:
                continue
            for word in TELLING.get(behind.group(1), [behind.group(1)]):
                if word not in said:
                    self.problems.append(f"{entry.name}: nothing is said of '{word}' at the end of '{message.text}'")

    def page(self, entry, version):
        self.check_ends(entry)
        summary = first_sentence(entry.comment.text[0])
        lines = [r"'\" t"] if entry.name in self.results else []
        lines += [f'.TH {entry.name} 3 {date()} "libsai {version}" "Chip programming"', ".SH NAME"]
        lines += [rf"{entry.name} \- {roff(summary[0].lower() + summary[1:] + also_called(entry))}", ".SH LIBRARY", "libsai (\\-lsai)"]
        lines += [".SH SYNOPSIS"]
        for file in self.headers_of(entry):
            lines += [f".B #include <{file}>", ".br"]
        lines += [".B #include <sai.h>", ".PP", *synopsis(entry), ".SH DESCRIPTION"]
        prose = [p for p in entry.comment.text if not SAME.fullmatch(p)]
        prose += [RESULTS.sub("", p).strip() for p in self.section_of[entry.name].prose]
        for i, paragraph in enumerate(p for p in prose if re.search(r"\w{3}", p)):
            lines += ([".PP"] if i else []) + [roff(paragraph)]
        if entry.params:
            lines += [".SH ARGUMENTS"]
            for name, said in self.arguments(entry):
                lines += [".TP", rf".I {escaped(name)}", sentence(said)]
        for type_ in self.types_of(entry):
            lines += [rf".SS {type_.name}", roff(" ".join(type_.comment.text)), ".PP", *code(type_.code)]
            for name, said in type_.comment.params.items():
                lines += [".TP", rf".I {escaped(name)}", sentence(said)]
        if entry.kind == "function":
            result = self.result_of(entry)
            if result:
                lines += [".SH RETURN VALUE", sentence(result)]
            elif entry.returns == "void":
                lines += [".SH RETURN VALUE", "None."]
            else:
                self.problems.append(f"{entry.name}: nothing is said of its result")
            if entry.name in self.results:
                self.check_results(entry)
                lines += [".SH RESULTS", *self.table_of_results(entry)]
            elif entry.section != "Logging" and entry.params and entry.params[0][1] == "unit":
                self.problems.append(f"{entry.name}: docs/results has nothing of it")
            lines += [".SH LOG MESSAGES", *self.messages_of(entry)]
        self.check_pointers(entry, lines)
        related = self.related(entry)
        if related[0] == ("sai", 7):
            self.problems.append(f"{entry.name}: its page leads to no other function")
        return lines + [".SH SEE ALSO", *listed_pages(related)]

    def messages_logged(self, entry):
        return sorted(dict.fromkeys(self.logged.get(entry.name, [])), key=lambda m: m[1] == "debugging")

    def table_of_results(self, entry):
        """Tested rows: the message is the number in the list of messages that follows."""
        texts = [text for text, _ in self.messages_logged(entry)]
        rows = self.results[entry.name]
        lines = ["Each row is tested on the virtual chip. The steps are in the order of the calls; the first that fails",
                 "ends the function unless the last column says otherwise.",
                 r"\(lqIts code\(rq is that of the SDK call, converted by", r"\fBsdk_to_sai\fR(3)."]
        if any(row.is_real_only for row in rows):
            lines += [r"Rows with \(lq*\(rq: only a real chip answers so, or the virtual chip when it is told to fail."]
        named = {name for row in rows for name in CASES if re.search(rf"[(,r] ?{name}(,| or|\))", row.when)}
        if named:
            lines += ["In parentheses are the cases in which a call fails so:"]
            lines += ["; ".join(rf"\(lq{name}\(rq, {CASES[name]}" for name in CASES if name in named) + "."]
        lines += [".PP", ".ad l", ".TS", "nokeep;", "lb lb lb lb", "lw(15) lx lw(7) lw(13)."]
        lines += ["Result\tWhen\tLog\tThe chip then"]
        for row in rows:
            numbers = ranges(sorted(texts.index(text) + 1 for text in row.log)) or r"\-"
            result = row.result + (" *" if row.is_real_only else "")
            columns = [markdown.breakable(roff(result)), markdown.breakable(roff(row.when)), numbers, roff(row.chip)]
            lines += ["T{", "\nT}\tT{\n".join(columns), "T}"]
        return lines + [".TE", ".ad b"]

    def messages_of(self, entry):
        logged = self.messages_logged(entry)
        if not logged:
            own = entry.section == "Logging"
            return ["None of its own."] if own else ["None."]
        index = rf"\fI{escaped(self.documents)}/messages.md\fR"
        lines = ["What to do about each is told in the index of log messages, the file", index,
                 r"in the directory that libsai was installed to, such as \fI/usr\fR."]
        for number, (text, level) in enumerate(logged, 1):
            to = f"Level {level}." if " " not in level else f"To {level}."
            lines += [".TP", rf"{number}. \(lq{escaped(text)}\(rq", to]
        return lines

    def related(self, entry):
        """The functions that its comment names, its inverse and the rest of its family."""
        comment = self.documented(entry)
        text = " ".join([*entry.comment.text, *comment.text, *comment.params.values(), comment.result])
        names = {name for name in re.findall(r"\b(\w+)\b", text) if name in NAMES}
        names |= NAMES & {entry.name.replace("_register_", "_unregister_")}
        names |= {name for name in NAMES if VERB.sub("", name) == VERB.sub("", entry.name)}
        names -= {entry.name}
        if not names:
            names = self.neighbors(entry)
        own = [(name, 3) for name in sorted(names)]
        return [*own, ("sai", 7), ("swsdk", 7)] if entry.name in self.results else [*own, ("sai", 7)]

    def neighbors(self, entry):
        """Those of its section whose names begin like its own, the longer the better; else those beside it;
        of the only one of a section, those that make the same SDK calls."""
        section = [e.name for e in self.section_of[entry.name].entries if e.kind != "type" and e.name != entry.name]
        words = entry.name.split("_")
        for length in range(len(words) - 1, 1, -1):
            start = "_".join(words[:length]) + "_"
            if alike := [name for name in section if name.startswith(start)]:
                return set(alike[:6])
        if section:
            return set(section[:3])
        same_calls = [callers for callers in results.callers().values() if entry.name in callers]
        return set().union(*same_calls) - {entry.name}

    def overview(self, version):
        lines = [f'.TH sai 7 {date()} "libsai {version}" "Chip programming"', ".SH NAME"]
        lines += [r"sai \- the functions of libsai, by what they are about", ".SH SYNOPSIS", ".B #include <sai.h>"]
        lines += [".PP", r"\fBcc\fR program.c \fB$(pkg\-config \-\-cflags \-\-libs sai)\fR", ".SH DESCRIPTION"]
        for i, paragraph in enumerate(self.intro.text):
            if not paragraph.startswith("- "):
                lines += ([".PP"] if i else []) + [roff(paragraph)]
                continue
            for point in re.split(r"(?:^| )- (?=[A-Z`])", paragraph)[1:]:
                lines += [r".IP \(bu 2", roff(point)]
        for section in self.sections:
            named = [e for e in section.entries if e.kind != "type"]
            lines += [f".SS {section.title}"]
            for paragraph in section.prose:
                lines += [roff(paragraph), ".PP"]
            if lines[-1] == ".PP":
                lines.pop()
            for entry in named:
                lines += [".TP", f".BR {entry.name} (3)", sentence(first_sentence(entry.comment.text[0]))]
        return lines + [".SH SEE ALSO", ".BR sai\\-index (7),", *(f".BR sai\\-{escaped(page.stem)} (7)," for page in TASKS),
                        ".BR swsdk (7),", ".BR saish (1),", ".BR swsdk\\-switch (1)"]

    def permuted_index(self, version):
        """Every word of the names and the first sentences, with the functions that have it; and the verbs."""
        lines = [r"'\" t", f'.TH sai\\-index 7 {date()} "libsai {version}" "Chip programming"', ".SH NAME"]
        lines += [r"sai\-index \- words of the functions of libsai, and their verbs", ".SH VERBS"]
        lines += ["Each function has one name; what takes something away may have any of these verbs in it:", ".ad l", ".TS", "nokeep;", "lb lb lb",
                  "l lx l."]
        lines += ["Verb\tWhat it is used for\tFunctions"]
        for verb, use in ENDING_VERBS.items():
            names = sorted(name for name in NAMES if verb in name.split("_"))
            if not names:
                self.problems.append(f"no function has the verb {verb}")
            lines += [f"{verb}\tT{{", roff(use), "T}\tT{", ",\n".join(map(markdown.breakable, names)), "T}"]
        lines += [".TE", ".ad b", ".SH INDEX"]
        words = {}
        for name in NAMES:
            said = first_sentence(self.entries[name].comment.text[0])
            for word in {w.lower() for w in re.findall(r"[A-Za-z][A-Za-z0-9]+", said + " " + name.replace("_", " "))}:
                words.setdefault(word, set()).add(name)
        for word, names in sorted(words.items()):
            if word not in COMMON and len(names) <= 25:
                lines += [".TP", f".B {escaped(word)}", ",\n".join(map(markdown.breakable, sorted(names)))]
        return lines + [".SH SEE ALSO", ".BR sai (7)"]


    def sdk_functions(self, version):
        """The functions of the Chip SDK that the library calls: where the pages lead that name them."""
        lines = [r"'\" t", f'.TH swsdk 7 {date()} "libsai {version}" "Chip programming"', ".SH NAME"]
        lines += [r"swsdk \- the functions of the Chip SDK that libsai calls", ".ad l", ".SH DESCRIPTION"]
        lines += ["Pages of", ".BR sai (7)", "name them where they fail. The vendor documents them; this page tells what",
                  "they are about, and whose failures they are.", "Each answers 0 or a negative code."]
        callers = results.callers()
        known = sdk.functions()
        if missing := sorted(callers.keys() - known.keys()):
            self.problems.append(f"swsdk/include does not declare {', '.join(missing)}")
            return lines
        file = None
        named = {name for text in self.texts() for name in re.findall(r"\w+", text)}
        for name in sorted(callers.keys() | (named & known.keys()), key=lambda name: (known[name].header or "~", name)):
            function = known[name]
            if function.header != file:
                file = function.header
                lines += [f".SS <{file}>", roff(function.about)] if file else [".SS Declared by no header"]
            lines += [".TP", f".B {name}", markdown.breakable(roff(function.prototype)), ".br"]
            if function.comment:
                lines += [roff(function.comment), ".br"]
            if name in callers:
                lines += ["Called by", ",\n".join(rf"\fB{caller}\fR(3)" for caller in sorted(callers[name])) + "."]
        return lines + [".SH CODES", *self.codes(), ".SH SEE ALSO", ".BR sai (7)"]

    def task(self, page, version):
        """A page of docs/tasks."""
        text = page.read_text()
        title = text.partition("\n")[0].lstrip("# ")
        body = markdown.roff(text)
        names = sorted(set(re.findall(r"\b\w+\b", text)) & NAMES)
        lines = [r"'\" t", f'.TH sai\\-{escaped(page.stem)} 7 {date()} "libsai {version}" "Chip programming"']
        lines += [".SH NAME", rf"sai\-{escaped(page.stem)} \- {escaped(title[0].lower() + title[1:])}", *body]
        return lines + [".SH SEE ALSO", *listed_pages([*((name, 3) for name in names), ("sai", 7)])]

    def texts(self):
        """All that the comments of the header say."""
        for entry in self.entries.values():
            yield from [*entry.comment.text, *entry.comment.params.values(), entry.comment.result]

    def codes(self):
        """The SDK's codes, with the library's code and the SDK's text of each."""
        lines = [".TS", "lb lb lb", "l l l.", "Code\tResult\tText"]
        for number, (text, own) in enumerate(messages.reasons()[:-1]):
            lines.append(f"{results.SDK_NAMES.get(-number, escaped(str(-number)))}\t{own}\t{text}")
        return lines + [".TE"]


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
    NAMES.update(name for name, entry in reference.entries.items() if entry.kind != "type")
    pages = {f"man3/{name}.3": reference.page(reference.entries[name], version) for name in sorted(NAMES)}
    pages["man7/sai.7"] = reference.overview(version)
    pages |= {f"man7/sai-{page.stem}.7": reference.task(page, version) for page in TASKS}
    pages["man7/sai-index.7"] = reference.permuted_index(version)
    pages["man7/swsdk.7"] = reference.sdk_functions(version)
    for command in (ROOT / "docs").glob("*.1"):
        page = command.read_text().replace("@DATE@", date()).replace("@VERSION@", version)
        pages[f"man1/{command.name}"] = page.replace("@TABLES@", roff(shown_tables())).splitlines()
    if reference.problems:
        print("\n".join(reference.problems), file=sys.stderr)
        return 1
    for name, lines in pages.items():
        path = directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(lines) + "\n")
    return 0


NAMES = set()

if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
