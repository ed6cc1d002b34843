"""What pages of the manual are written in."""

import os
import re
import textwrap
import time

# The functions and variables that have a page.
NAMES = set()
# At the head of a page: its names can be searched for and copied.
UNHYPHENATED = ".nr HY 0"


def escaped(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text)


def prose(text):
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


def sentence(text):
    return prose(text[:1].upper() + text[1:].rstrip(".") + ".")


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


def title(name, section, version):
    return f'{UNHYPHENATED}\n.TH {escaped(name)} {section} {date()} "libsai {version}" "Chip programming"'


def listed_pages(pages):
    return [f".BR {name} ({number})," for name, number in pages[:-1]] + [f".BR {pages[-1][0]} ({pages[-1][1]})"]
