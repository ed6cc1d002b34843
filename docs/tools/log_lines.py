"""Finds what lines of a log mean. This text is also part of the program sai-messages, with the rows in it."""

import functools
import re
import textwrap

CONVERSION = re.compile(r"%(?:%|[-+ #0-9.]*(?:l|ll|z)?([a-zA-Z]))")


@functools.cache
def pattern_of(text):
    """A pattern for lines with this message, wherever in the line it is."""
    parts = []
    end = 0
    for match in CONVERSION.finditer(text):
        parts.append(re.escape(text[end : match.start()]))
        parts.append({"d": r"[-+ ]*\d+", "u": r" *\d+", "x": "[0-9a-f]+", "X": " *[0-9A-F]+"}.get(match[1], "(?:.*?)"))
        end = match.end()
    return re.compile("".join(parts) + re.escape(text[end:]) + r"\s*$")


def fixed(text):
    """How much of a message is the same in all lines."""
    return len(CONVERSION.sub("", text))


def harmless_pattern(text):
    """What `grep -E` takes for a harmless line; "*" is any text."""
    return re.sub(r"([\[\](){}.?+^$|\\])", r"\\\1", text).replace("*", ".*") + "[[:space:]]*$"


class Finder:
    """The rows: text, level, functions, title and advice of each message; the SDK's texts; the lines that are harmless."""

    def __init__(self, rows, reasons, harmless):
        self.rows = [(pattern_of(row["text"]), row) for row in rows]
        self.reasons = reasons
        self.harmless = [(re.compile(harmless_pattern(text).replace("[[:space:]]", r"\s")), why) for text, why in harmless]

    def row_of(self, line):
        hits = [row for pattern, row in self.rows if pattern.search(line)]
        return max(hits, key=lambda row: fixed(row["text"])) if hits else None

    def reason_of(self, line):
        return next((reason for reason in self.reasons if ": " + reason[0] in line), None)

    def why_harmless(self, line):
        return next((why for pattern, why in self.harmless if pattern.search(line)), None)


def paragraph(text):
    # Without the marks of Markdown.
    text = re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text).replace("`", "").replace("**", "")
    return textwrap.fill(" ".join(text.split()), 100, break_long_words=False, break_on_hyphens=False)


def tell(finder, line):
    """Prints what a line means and what to do; whether it is known."""
    row = finder.row_of(line)
    if row is None:
        return False
    print(f"{row['text']}\nlevel {row['level']}; {', '.join(row['functions'])}")
    if why := finder.why_harmless(line):
        print("\n" + paragraph("Harmless: " + why))
    print("\n" + paragraph(row["title"] + "."))
    for advice in row["advice"]:
        print("\n" + paragraph(advice))
    if reason := finder.reason_of(line):
        print("\n" + paragraph(f'"{reason[0]}" ({reason[1]}): {reason[2]}'))
    return True


def tell_all(finder, lines):
    """Prints what the lines of a log mean, each message with each reason once, the most frequent first. Traces, of which
    none is a failure, are counted."""
    groups = {}
    others = 0
    harmless = 0
    traces = 0
    for line in lines:
        row = finder.row_of(line)
        if row is None:
            others += bool(line.strip())
        elif finder.why_harmless(line):
            harmless += 1
        elif row["level"] == "debugging":
            traces += 1
        else:
            groups.setdefault((row["text"], finder.reason_of(line)), []).append(line.strip())
    for found in sorted(groups.values(), key=len, reverse=True):
        print(f"== {len(found)} of: {found[0]}\n")
        tell(finder, found[0])
        print()
    print(f"{sum(map(len, groups.values()))} lines to look at, {harmless} harmless, {traces} traces, "
          f"{others} not of the library")
    return bool(groups or harmless or traces)
