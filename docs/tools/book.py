#!/usr/bin/env python3
"""Writes all the documentation as one page of HTML that opens from a file, with a search.

usage: book.py MAN_DIRECTORY FILE [VERSION]

It has the guides, the tasks, the manual pages of MAN_DIRECTORY, which mandoc renders, and the pictures. It is an error
when a link leads nowhere.
"""

import html
import re
import subprocess
import sys
from pathlib import Path

import markdown
import pictures
import sources

ROOT = sources.repository()
# Those that come first, in this order; other pages of docs follow.
GUIDES = ["README.md", "docs/first-day.md", "docs/virtual-chip.md", "docs/forwarding.md", "docs/drops.md",
          "docs/testing.md", "docs/python.md", "docs/failures.md", "docs/messages.md", "docs/architecture.md",
          "examples/your-application/README.md"]

SDK_CALLS = set()

FRAME = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><meta name="viewport" content="width=device-width">
<title>libsai @VERSION@</title><style>
:root { color-scheme: light dark; --line: #8886; --soft: #8881; --link: #2a6fb0 }
body { margin: 0; font: 16px/1.5 system-ui, sans-serif; display: grid; grid-template-columns: 20rem 1fr }
nav { border-right: 1px solid var(--line); height: 100vh; overflow: auto; position: sticky; top: 0; padding: 1rem;
      box-sizing: border-box; font-size: 14px }
nav input { width: 100%; box-sizing: border-box; padding: .4rem; font: inherit }
nav a { display: block; text-decoration: none; overflow-wrap: anywhere }
nav h2 { font-size: 14px; margin: 1rem 0 .2rem }
main { padding: 1rem 2rem; max-width: 62rem; min-width: 0 }
article { display: none } article.shown { display: block }
a { color: var(--link) } pre { background: var(--soft); padding: .6rem; overflow: auto; font-size: 14px }
table { border-collapse: collapse; display: block; overflow: auto } td, th { border: 1px solid var(--line);
padding: .2rem .5rem; text-align: left; vertical-align: top } dd { margin-left: 2rem }
svg { width: 100%; height: auto; font-family: inherit } svg text { fill: currentColor }
svg .note { opacity: .7 } svg .name { font-weight: 600 }
svg .room { fill: var(--soft); stroke: var(--line) } svg .box { fill: none; stroke: var(--line) }
svg .arrow { fill: none; stroke: currentColor; stroke-width: 1.5 }
</style></head><body><nav><input id="search" type="search" placeholder="Search" autofocus>
<div id="found"></div><div id="contents">
@CONTENTS@
</div></nav><main>
@PAGES@
</main><script>
const pages = [...document.querySelectorAll("article")];
const search = document.getElementById("search");
const found = document.getElementById("found");
const contents = document.getElementById("contents");
function show() {
  const target = document.getElementById(decodeURIComponent(location.hash.slice(1))) || pages[0];
  const page = target.closest("article");
  for (const one of pages) one.classList.toggle("shown", one === page);
  if (target === page) scrollTo(0, 0); else target.scrollIntoView();
}
let texts = null;
function look() {
  const words = search.value.toLowerCase().split(/\\s+/).filter(Boolean);
  contents.hidden = words.length > 0;
  found.replaceChildren();
  if (!words.length) return;
  texts = texts || pages.map((page) => page.textContent.toLowerCase());
  const title = (page) => page.dataset.title.toLowerCase();
  const hits = pages.filter((page, i) => words.every((word) => texts[i].includes(word) || title(page).includes(word)));
  const rank = (page) => words.filter((word) => !title(page).includes(word)).length;
  for (const page of hits.sort((a, b) => rank(a) - rank(b)).slice(0, 100)) {
    const link = document.createElement("a");
    link.href = "#" + page.id;
    link.textContent = page.dataset.title;
    found.append(link);
  }
  if (!hits.length) found.textContent = "Nothing found.";
}
addEventListener("hashchange", show);
search.addEventListener("input", look);
show();
</script></body></html>
"""


def identifier(path):
    return path.relative_to(ROOT).as_posix().removesuffix(".md").replace("/", "-")


def guide(path, included):
    """A page of Markdown. Its anchors begin with its own name, because all pages are one."""
    own = identifier(path)

    def link(target):
        file, _, anchor = target.partition("#")
        if re.match(r"[a-z]+:", target):
            return target
        page = (path.parent / file).resolve() if file else path
        if page not in included:
            return ""
        return "#" + identifier(page) + (f":{anchor}" if anchor else "")

    text = path.read_text()
    title = re.search(r"^# (.*)", text, re.MULTILINE)[1]  # a page that is generated begins with a comment
    return own, title, re.sub(r'(<h\d) id="', rf'\1 id="{own}:', markdown.to_html(text, link))


def sdk_links(body):
    """Calls of the SDK lead to what swsdk(7) tells of them."""
    def linked(match):
        return f'<a href="#{match[1]}">{match[1]}</a>' if match[1] in SDK_CALLS else match[0]

    return re.sub(r"\b((?:bcm|soc|sh|sdk|system)_\w+)\b(?![^<]*</a>)", linked, body)


def manual_pages(directory, tasks):
    """Files and bodies of manual pages, rendered in one run, but for those of tasks, which are here as guides."""
    of_task = {f"sai-{page.stem}.7": identifier(page) for page in tasks}
    files = sorted(directory.glob("man*/*"), key=lambda file: (file.suffix != ".7", file.suffix, file.name))
    names = {file.name for file in files}
    done = subprocess.run(["mandoc", "-T", "html", "-O", "fragment", *files], capture_output=True, text=True, check=True)
    bodies = done.stdout.split('<table class="head">')[1:]
    for file, body in zip(files, bodies, strict=True):
        body = body.partition("</table>")[2].partition('<table class="foot">')[0]
        body = re.sub(r'<a class="permalink" href="[^"]*">(.*?)</a>', r"\1", body, flags=re.DOTALL)
        body = re.sub(r' (?:id|class)="[^"]*"', "", body)
        body = body.replace("<h1", "<h2").replace("</h1", "</h2").replace("\n<br/>\n", "\n")

        def linked(match, own=file.name):
            name = f"{match[1]}.{match[2]}"
            target = of_task.get(name, name)
            return f'<a href="#{target}">{match[1]}</a>({match[2]})' if name in names - {own} else match[0]

        body = re.sub(r"<b>([\w-]+)</b>\s?\((\d)\)", linked, body)
        if file.name == "swsdk.7":
            body = re.sub(r"<dt><b>(\w+)</b>", r'<dt id="\1"><b>\1</b>', body)
        else:
            body = sdk_links(body)
        if file.name not in of_task:
            yield file, body


def article(own, title, body):
    return f'<article id="{own}" data-title="{html.escape(title)}">\n{body}\n</article>'


def contents(title, entries):
    return f"<h2>{title}</h2>" + "".join(f'<a href="#{own}">{html.escape(name)}</a>' for own, name in entries)


def main(arguments):
    if len(arguments) not in (2, 3):
        print(__doc__.split("\n\n")[1], file=sys.stderr)
        return 2
    guides = [ROOT / name for name in GUIDES]
    guides += sorted({*(ROOT / "docs").glob("*.md")} - {*guides, ROOT / "docs/messages.in.md"})
    tasks = sorted((ROOT / "docs/tasks").glob("*.md"))
    written = {path: guide(path, {*guides, *tasks}) for path in [*guides, *tasks]}
    directory = Path(arguments[0])
    SDK_CALLS.update(re.findall(r"^\.B (\w+)$", (directory / "man7/swsdk.7").read_text(), re.MULTILINE))
    manual = list(manual_pages(directory, tasks))
    drawn = "".join(f"<h2>{p.title}</h2>{p.svg()}" for p in pictures.all_pictures())
    articles = [article(*written[path]) for path in guides]
    articles += [article("pictures", "Pictures", f"<h1>Pictures</h1>{drawn}")]
    articles += [article(*written[path]) for path in tasks]
    for file, body in manual:
        title = f"{file.stem}({file.suffix[1:]})"
        articles.append(article(file.name, title, f"<h1>{title}</h1>{body}"))
    menu = [contents("Guides", [*((written[p][0], written[p][1]) for p in guides), ("pictures", "Pictures")]),
            contents("Tasks", [(written[p][0], written[p][1]) for p in tasks])]
    menu += [contents(f"Manual, section {section}", [(f.name, f.stem) for f, _ in manual if f.suffix == f".{section}"])
             for section in (7, 1, 3)]
    pages = "\n".join(articles)
    problems = [target for target in sorted(set(re.findall(r'href="#([^"]*)"', pages)))
                if f'id="{target}"' not in pages]
    if problems:
        print("these links lead nowhere: " + ", ".join(problems), file=sys.stderr)
        return 1
    parts = {"VERSION": arguments[2] if len(arguments) == 3 else "", "CONTENTS": "\n".join(menu), "PAGES": pages}
    Path(arguments[1]).write_text(re.sub(r"@([A-Z]+)@", lambda match: parts[match[1]], FRAME))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
