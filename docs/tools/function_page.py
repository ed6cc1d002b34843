"""The page of a function or variable."""

import re
import textwrap

import markdown
import roff
from reference import RESULTS, SAME

# References to other text of the header, which is on another page.
POINTERS = re.compile(r"\b(?:(?:above|below)(?! \d)|th(?:is|ese) (?:section|header|comment)s?|the comment)\b")
# Where a message has the SDK's text, and what follows it.
BEHIND_THE_TEXT = re.compile(r"(?:: |failed )%s(.+)$")
TELLING = {".": ["full stop"], r"\n": ["newline"], r".\n": ["full stop", "newline"]}
# Cases of the fault sweep, which tables of results have in parentheses.
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


def synopsis(entry):
    if entry.kind == "variable":
        return [f".B extern {roff.escaped(entry.code)};"]
    start = f"{entry.returns} {entry.name}("
    rest = ", ".join(declared.replace(" ", "\0") for declared, _ in entry.params) or "void"
    lines = textwrap.wrap(rest + ");", max(76 - len(start), 30))
    lines = [line.replace("\0", " ") for line in lines]
    return [".nf", f"\\fB{roff.escaped(entry.returns)} {entry.name}\\fR({roff.escaped(lines[0])}",
            *(" " * min(len(start), 40) + roff.escaped(line) for line in lines[1:]), ".fi"]


def also_called(entry):
    """For "man -k": the other words for taking away, where the name has one of them."""
    own = set(entry.name.split("_"))
    if not own & ({"remove", "del", "delete", "destroy", "unset", "clear"}):
        return ""
    said = roff.first_sentence(entry.comment.text[0]).lower()
    missing = [word for word in ("remove", "delete") if word not in said and word not in own]
    return f" ({', '.join(missing)})" if missing else ""


def check_pointers(reference, entry, lines):
    text = " ".join(" ".join(lines).split())
    for found in POINTERS.finditer(text):
        around = text[max(0, found.start() - 30) : found.end() + 10]
        reference.problems.append(f"{entry.name}: '{around}' points to a place that its page does not have")


def check_ends(reference, entry):
    """Its comment says what follows the SDK's text in a message that does not end with it."""
    said = " ".join(entry.comment.text) + entry.comment.result
    for message in reference.errors:
        behind = BEHIND_THE_TEXT.search(message.text)
        if not behind or entry.name not in message.functions:
            continue
        for word in TELLING.get(behind.group(1), [behind.group(1)]):
            if word not in said:
                reference.problems.append(f"{entry.name}: nothing is said of '{word}' at the end of '{message.text}'")


def check_results(reference, entry):
    """Each code that its comment names has a row; what is said of a whole section need not hold for each function."""
    said = set(re.findall(r"(?<![\w-])-\d+\b", reference.documented(entry).result))
    rows = " ".join(row.result for row in reference.results[entry.name])
    for code in sorted(said - set(re.findall(r"-\d+", rows))):
        reference.problems.append(f"{entry.name}: its comment names {code}, and docs/results has no such result")


def arguments(reference, entry):
    comment = reference.documented(entry)
    for declared, name in entry.params:
        if name == "...":
            said = "what the conversions of the format ask for"
        else:
            said = comment.params.get(name, "")
        if not said and name == "unit":
            said = "number of the unit, from 0; sai_unit_get() tells it"
        if not said:
            reference.problems.append(f"{entry.name}: nothing is said of its argument {name}")
        yield name, said
    for name in entry.comment.params:
        if name not in [n for _, n in entry.params]:
            reference.problems.append(f"{entry.name}: has no argument {name}")


def table_of_results(reference, entry):
    """Tested rows: the message is the number in the list of messages that follows."""
    texts = [text for text, _ in reference.messages_logged(entry)]
    rows = reference.results[entry.name]
    lines = ["Each row is tested on the virtual chip. The steps are in the order of the calls; the first that fails",
             "ends the function unless the last column says otherwise, and nothing that was done before it is undone.",
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
        numbers = roff.ranges(sorted(texts.index(text) + 1 for text in row.log)) or r"\-"
        result = row.result + (" *" if row.is_real_only else "")
        columns = [markdown.breakable(roff.prose(result)), markdown.breakable(roff.prose(row.when)), numbers,
                   roff.prose(row.chip)]
        lines += ["T{", "\nT}\tT{\n".join(columns), "T}"]
    return lines + [".TE", ".ad b"]


def messages_of(reference, entry):
    logged = reference.messages_logged(entry)
    if not logged:
        own = entry.section == "Logging"
        return ["None of its own."] if own else ["None."]
    index = rf"\fI{roff.escaped(reference.documents)}/messages.md\fR"
    lines = ["What to do about each is told in the index of log messages, the file", index,
             r"in the directory that libsai was installed to, such as \fI/usr\fR."]
    for number, (text, level) in enumerate(logged, 1):
        to = f"Level {level}." if " " not in level else f"To {level}."
        lines += [".TP", rf"{number}. \(lq{roff.escaped(text)}\(rq", to]
    return lines


def page(reference, entry, version):
    check_ends(reference, entry)
    summary = roff.first_sentence(entry.comment.text[0])
    lines = [r"'\" t"] if entry.name in reference.results else []
    lines += [roff.title(entry.name, 3, version), ".SH NAME"]
    lines += [rf"{entry.name} \- {roff.prose(summary[0].lower() + summary[1:] + also_called(entry))}"]
    lines += [".SH LIBRARY", "libsai (\\-lsai)"]
    lines += [".SH SYNOPSIS"]
    for file in reference.headers_of(entry):
        lines += [f".B #include <{file}>", ".br"]
    lines += [".B #include <sai.h>", ".PP", *synopsis(entry), ".SH DESCRIPTION"]
    prose = [p for p in entry.comment.text if not SAME.fullmatch(p)]
    prose += [RESULTS.sub("", p).strip() for p in reference.section_of[entry.name].prose]
    for i, paragraph in enumerate(p for p in prose if re.search(r"\w{3}", p)):
        lines += ([".PP"] if i else []) + [roff.prose(paragraph)]
    if entry.params:
        lines += [".SH ARGUMENTS"]
        for name, said in arguments(reference, entry):
            lines += [".TP", rf".I {roff.escaped(name)}", roff.sentence(said)]
    for type_ in reference.types_of(entry):
        lines += [rf".SS {type_.name}", roff.prose(" ".join(type_.comment.text)), ".PP", *roff.code(type_.code)]
        for name, said in type_.comment.params.items():
            lines += [".TP", rf".I {roff.escaped(name)}", roff.sentence(said)]
    if entry.kind == "function":
        result = reference.result_of(entry)
        if result:
            lines += [".SH RETURN VALUE", roff.sentence(result)]
        elif entry.returns == "void":
            lines += [".SH RETURN VALUE", "None."]
        else:
            reference.problems.append(f"{entry.name}: nothing is said of its result")
        if entry.name in reference.results:
            check_results(reference, entry)
            lines += [".SH RESULTS", *table_of_results(reference, entry)]
        elif entry.section != "Logging" and entry.params and entry.params[0][1] == "unit":
            reference.problems.append(f"{entry.name}: docs/results has nothing of it")
        lines += [".SH LOG MESSAGES", *messages_of(reference, entry)]
    check_pointers(reference, entry, lines)
    related = reference.related(entry)
    if related[0] == ("sai", 7):
        reference.problems.append(f"{entry.name}: its page leads to no other function")
    return lines + [".SH SEE ALSO", *roff.listed_pages(related)]
