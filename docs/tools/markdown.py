"""Pages of Markdown as manual pages and as HTML: headings, paragraphs, lists, tables, code, links and emphasis."""

import html
import re
from dataclasses import dataclass

FENCE = re.compile(r"^```(\S*)$")
ITEM = re.compile(r"^(?:[-*]|\d+\.) ")
RULE = re.compile(r"^\|[-| :]+\|$")
CODE = re.compile(r"`([^`]+)`")
LINK = re.compile(r"\[([^]]*)\]\(([^)\s]+)\)")
STRONG = re.compile(r"\*\*(.+?)\*\*")


@dataclass
class Block:
    kind: str  # heading, paragraph, item, table, code
    text: str = ""
    level: int = 0
    rows: tuple = ()


def cells(line):
    return [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line.strip()[1:-1])]


def blocks(text):
    lines = re.sub(r"<!--.*?-->\n?", "", text, flags=re.DOTALL).split("\n")
    found = []
    i = 0
    while i < len(lines):
        line = lines[i]
        i += 1
        if not line.strip():
            continue
        if FENCE.match(line.strip()):
            code = []
            while not lines[i].strip() == "```":
                code.append(lines[i])
                i += 1
            i += 1
            found.append(Block("code", "\n".join(code)))
        elif line.startswith("#"):
            marks, title = line.split(" ", 1)
            found.append(Block("heading", title, len(marks)))
        elif line.startswith("|"):
            rows = [cells(line)]
            while i < len(lines) and lines[i].startswith("|"):
                if not RULE.match(lines[i]):
                    rows.append(cells(lines[i]))
                i += 1
            found.append(Block("table", rows=tuple(rows)))
        elif line.startswith("    ") and not (found and found[-1].kind == "item"):
            code = [line[4:]]
            while i < len(lines) and (lines[i].startswith("    ") or not lines[i].strip()):
                code.append(lines[i][4:])
                i += 1
            found.append(Block("code", "\n".join(code).rstrip()))
        else:
            kind = "item" if ITEM.match(line) else "paragraph"
            part = [ITEM.sub("", line)]
            while i < len(lines) and lines[i].strip() and not re.match(r"[-*|#] |\||```|\d+\. |#", lines[i].strip()):
                part.append(lines[i].strip())
                i += 1
            found.append(Block(kind, " ".join(part)))
    return found


def slug(title):
    """The anchor of a heading, as the usual viewers make it."""
    return re.sub(r"[^\w\- ]", "", title.strip().lower()).replace(" ", "-")


def roff_text(text):
    text = LINK.sub(r"\1", text).replace("\\", "\\e").replace("-", "\\-")
    text = STRONG.sub(r"\\fB\1\\fR", CODE.sub(r"\\fB\1\\fR", text))
    return re.sub(r"^([.'])", r"\\&\1", text)


def breakable(text):
    """Long names may be broken behind underscores."""
    return re.sub(r"(?<=\w)_(?=\w)", r"_\\:", text)


def roff(text):
    """The lines of a manual page's body: what stands before the first heading of the second level is its description."""
    lines = [".SH DESCRIPTION"]
    for block in blocks(text):
        if block.kind == "heading" and block.level == 2:
            lines += [f".SH {roff_text(block.text).upper()}"]
        elif block.kind == "heading" and block.level > 2:
            lines += [f".SS {roff_text(block.text)}"]
        elif block.kind == "paragraph":
            lines += [".PP", roff_text(block.text)]
        elif block.kind == "item":
            lines += [".IP \\(bu 2", roff_text(block.text)]
        elif block.kind == "code":
            code = block.text.replace("\\", "\\e").replace("-", "\\-")
            lines += [".PP", ".nf", *(re.sub(r"^([.'])", r"\\&\1", line) for line in code.split("\n")), ".fi"]
        elif block.kind == "table":
            others = len(block.rows[0]) - 1
            lines += [".ad l", ".TS", "nokeep;", "lb" + " lbx" * others, "l" + " lx" * others + "."]
            for row in block.rows:
                lines += ["T{", "\nT}\tT{\n".join(breakable(roff_text(cell)) or r"\&" for cell in row), "T}"]
            lines += [".TE", ".ad b"]
    # No paragraph begins right behind a heading.
    return [line for i, line in enumerate(lines) if not (line == ".PP" and lines[i - 1].startswith((".SH", ".SS")))]


def html_text(text, link):
    """Inline text; link(target) gives what a link leads to in HTML, or nothing."""
    codes = []

    def keep(match):
        codes.append(f"<code>{html.escape(match[1])}</code>")
        return f"\0{len(codes) - 1}\0"

    def linked(match):
        target = link(html.unescape(match[2]))
        return f'<a href="{html.escape(target)}">{match[1]}</a>' if target else match[1]

    text = html.escape(CODE.sub(keep, text), quote=False)
    text = STRONG.sub(r"<strong>\1</strong>", LINK.sub(linked, text))
    return re.sub("\0(\\d+)\0", lambda match: codes[int(match[1])], text)


def to_html(text, link):
    parts = []
    anchors = {}
    in_list = False
    for block in blocks(text):
        if in_list != (block.kind == "item"):
            in_list = not in_list
            parts.append("<ul>" if in_list else "</ul>")
        if block.kind == "heading":
            anchor = slug(block.text)
            copies = anchors[anchor] = anchors.get(anchor, -1) + 1
            anchor += f"-{copies}" if copies else ""
            parts.append(f'<h{block.level} id="{anchor}">{html_text(block.text, link)}</h{block.level}>')
        elif block.kind == "paragraph":
            parts.append(f"<p>{html_text(block.text, link)}</p>")
        elif block.kind == "item":
            parts.append(f"<li>{html_text(block.text, link)}</li>")
        elif block.kind == "code":
            parts.append(f"<pre>{html.escape(block.text)}</pre>")
        elif block.kind == "table":
            head, *rows = ["".join(f"<X>{html_text(cell, link)}</X>" for cell in row) for row in block.rows]
            parts.append("<table><tr>" + head.replace("X>", "th>") + "</tr>")
            parts += ["<tr>" + row.replace("X>", "td>") + "</tr>" for row in rows]
            parts.append("</table>")
    if in_list:
        parts.append("</ul>")
    return "\n".join(parts)
