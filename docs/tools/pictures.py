"""Pictures in SVG of what the sources and pages say: the rooms, the chip's tables and the way of a frame."""

import html
import re

import sources

ROOT = sources.repository()
WIDTH = 860


class Picture:
    """Boxes, lines of text and arrows, from top to bottom."""

    def __init__(self, title):
        self.title = title
        self.parts = []
        self.y = 10

    def text(self, x, y, text, size=13, anchor="start", kind="text"):
        self.parts.append(f'<text x="{x}" y="{y}" font-size="{size}" text-anchor="{anchor}" class="{kind}">'
                          f"{html.escape(text)}</text>")

    def box(self, x, y, width, height, kind="box"):
        self.parts.append(f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="6" class="{kind}"/>')

    def arrow(self, x, y, length):
        tip = y + length
        self.parts.append(f'<path class="arrow" d="M{x} {y} V{tip} M{x - 5} {tip - 6} L{x} {tip} L{x + 5} {tip - 6}"/>')

    def row(self, label, names, note=""):
        """A box with a label and smaller boxes side by side in it, as many lines as they need."""
        across = 5
        lines = -(-len(names) // across)
        height = 34 + 34 * lines if names else 34
        self.box(10, self.y, WIDTH - 20, height, "room")
        self.text(22, self.y + 22, label, 14, kind="name")
        self.text(WIDTH - 22, self.y + 22, note, 12, "end", "note")
        wide = (WIDTH - 44) / across
        for i, name in enumerate(names):
            x, y = 22 + (i % across) * wide, self.y + 34 + (i // across) * 34
            self.box(x, y, wide - 8, 26)
            self.text(x + (wide - 8) / 2, y + 18, name, 12, "middle")
        self.y += height

    def down(self):
        self.arrow(WIDTH / 2, self.y + 2, 22)
        self.y += 26

    def svg(self):
        return (f'<svg viewBox="0 0 {WIDTH} {self.y + 10}" role="img" aria-label="{html.escape(self.title)}">'
                + "".join(self.parts) + "</svg>")


def folders(path):
    return sorted(p.name for p in (ROOT / path).iterdir() if p.is_dir())


def rooms():
    picture = Picture("The rooms")
    picture.row("your application", [], "calls sai.h; may read swsdk/*.h in tests")
    picture.down()
    picture.row("libsai.so: src/", folders("src"), "each family stands on core, and on no other family")
    picture.down()
    picture.row("libswsdk-recorder.so: recorder/", [], "when it is preloaded: writes the calls that pass")
    picture.down()
    picture.row("the Chip SDK's interface: bcm/, soc/, shared/, appl/", [], "the library never knows what is below")
    picture.down()
    picture.row("libswsdk.so, the virtual chip: swsdk/", [name for name in folders("swsdk") if name != "include"],
                "on a board: the vendor's SDK and the chip")
    picture.down()
    picture.row("tools/, around the virtual chip", folders("tools"))
    return picture


def tables():
    """The limits, which a test compares with the sources."""
    picture = Picture("The chip's tables")
    page = (ROOT / "docs/virtual-chip.md").read_text()
    rows = re.findall(r"^\| ([^|]*) \| (\d+) \| `(\w+)::capacity` \|$", page, re.MULTILINE)
    across = 3
    wide = (WIDTH - 20) / across
    for i, (name, count, class_) in enumerate(rows):
        x, y = 10 + (i % across) * wide, 10 + (i // across) * 58
        picture.box(x, y, wide - 10, 48, "room")
        picture.text(x + 12, y + 20, re.sub(r"[`]| \(.*\)", "", name), 13, kind="name")
        picture.text(x + 12, y + 38, class_, 12, kind="note")
        picture.text(x + wide - 22, y + 38, count, 15, "end")
        picture.y = y + 48
    return picture


def way_of_a_frame():
    """The stages of the table in forwarding.md."""
    picture = Picture("The way of a frame")
    page = (ROOT / "docs/forwarding.md").read_text()
    stages = re.findall(r"^\| `(\w+)` \| (.*) \|$", page.split("| Stage | What it decides |")[1].split("\n\n")[0],
                        re.MULTILINE)
    for i, (stage, decides) in enumerate(stages):
        if i:
            picture.arrow(100, picture.y, 14)
            picture.y += 16
        picture.box(10, picture.y, 180, 30, "room")
        picture.text(100, picture.y + 20, stage, 14, "middle", "name")
        said = decides if len(decides) <= 96 else decides[:93].rsplit(" ", 1)[0] + " ..."
        picture.text(206, picture.y + 20, said.replace("`", ""), 13)
        picture.y += 30
    return picture


def all_pictures():
    return [rooms(), tables(), way_of_a_frame()]
