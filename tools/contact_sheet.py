#!/usr/bin/env python3
"""Pictures of what each command does: before and after, from the scripts of samples/commands.

usage: tools/contact_sheet.py [--program build/release/bin/tarnex] [--out docs/pictures]

Writes OUT/commands/NAME.svg for every script and OUT/commands.svg with all of them. A script says with the
comments "; before" and "; after" where the pictures are taken; that can be within a command.
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
WINDOW = "-8,-10 54,36"  # mm of the drawing, the same in every picture
PAPER = "124x92"  # mm, twice the size of the drawing
NAMES = """BP BM CD CM CS QQ XD XD0 CX SR SR0 WZ DB AC AF1 AF2 AF3 AF4 AF5 AF6 AF7 QD ZD QZ fx SIM SV Vorn
           s2p e2p scc AJ AJ1 move rotate mirror u redo""".split()
CELL_W, CELL_H, TITLE, GAP, COLUMNS = 124, 92, 9, 6, 2  # mm on the sheet


def pictures(program, name, folder):
    """Runs one script; gives its title and the two pictures as SVG texts."""
    script = (ROOT / "samples/commands" / f"{name}.scr").read_text(encoding="utf-8")
    title = script.splitlines()[0].lstrip("; ")
    for moment in ("before", "after"):
        plot = f"'plot {folder}/{name}-{moment}.svg\nWindow {WINDOW} {PAPER}"
        script, count = re.subn(rf"^; {moment}$", lambda _: plot, script, flags=re.M)
        if count != 1:
            sys.exit(f"{name}.scr: \"; {moment}\" stands there {count} times")
    run_file = folder / f"{name}.scr"
    run_file.write_text(script, encoding="utf-8")
    install = folder / f"install-{name}"
    install.mkdir()
    environment = dict(os.environ, TARNEX_INSTALL=str(install), TARNEX_LANGUAGE="1", SOURCE_DATE_EPOCH="0")
    ran = subprocess.run([program, "--no-wait", "run", str(run_file)], cwd=ROOT, env=environment, text=True,
                         capture_output=True)
    if ran.returncode != 0:
        sys.exit(f"{name}.scr: exit code {ran.returncode}\n{ran.stdout}{ran.stderr}")
    return title, [(folder / f"{name}-{moment}.svg").read_text(encoding="utf-8") for moment in ("before", "after")]


def placed(svg, x, y):
    """A picture as an element at a place, CELL_W by CELL_H mm."""
    head = re.search(r"<svg [^>]*viewBox=\"([^\"]*)\"[^>]*>", svg)
    inside = svg[head.end():svg.rindex("</svg>")]
    inside = re.sub(r"<desc>.*?</desc>", "", inside, flags=re.S).strip()
    return (f'<svg x="{x}" y="{y}" width="{CELL_W}" height="{CELL_H}" viewBox="{head.group(1)}">\n{inside}\n</svg>\n'
            f'<rect x="{x}" y="{y}" width="{CELL_W}" height="{CELL_H}" fill="none" stroke="#bbb" stroke-width=".3"/>\n')


def pair(title, before, after, x=0, y=0):
    text = title.replace("&", "&amp;").replace("<", "&lt;")
    return (f'<text x="{x}" y="{y + TITLE - 3}" font-size="5" font-family="Arial,Helvetica,sans-serif">{text}</text>\n'
            + placed(before, x, y + TITLE) + placed(after, x + CELL_W + GAP, y + TITLE))


def sheet(width, height, content):
    return (f'<?xml version="1.0" encoding="UTF-8"?>\n<svg xmlns="http://www.w3.org/2000/svg" width="{width}mm" '
            f'height="{height}mm" viewBox="0 0 {width} {height}">\n'
            f'<rect width="100%" height="100%" fill="#fff"/>\n{content}</svg>\n')


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("--program", default=str(ROOT / "build/release/bin/tarnex"))
    arguments.add_argument("--out", default=str(ROOT / "docs/pictures"), type=Path)
    arguments.add_argument("names", nargs="*", help="only these commands; no sheet is written then")
    a = arguments.parse_args()
    (a.out / "commands").mkdir(parents=True, exist_ok=True)
    pair_w, pair_h = 2 * CELL_W + GAP, CELL_H + TITLE
    content, count = "", 0
    with tempfile.TemporaryDirectory() as folder:
        for name in a.names or NAMES:
            title, (before, after) = pictures(os.path.abspath(a.program), name, Path(folder))
            (a.out / "commands" / f"{name}.svg").write_text(sheet(pair_w, pair_h, pair(title, before, after)),
                                                            encoding="utf-8")
            column, row = count % COLUMNS, count // COLUMNS
            content += pair(title, before, after, GAP + column * (pair_w + 3 * GAP), GAP + row * (pair_h + GAP))
            count += 1
    if not a.names:
        rows = -(-count // COLUMNS)
        (a.out / "commands.svg").write_text(sheet(COLUMNS * (pair_w + 3 * GAP), rows * (pair_h + GAP) + 2 * GAP, content),
                                            encoding="utf-8")
    print(f"{count} commands, pictures in {a.out}")


if __name__ == "__main__":
    main()
