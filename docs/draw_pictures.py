#!/usr/bin/python3
"""Draws the pictures of qsscan.md: a session at a terminal, and a page beside the sheet that it was scanned from.

    apt-get install python3-cairo fonts-dejavu-core poppler-utils
    cmake --preset release && cmake --build --preset release
    /usr/bin/python3 docs/draw_pictures.py

What the pictures show is what the programs do: the commands run against the virtual scanner while this script waits.
"""
import io
import os
import re
import subprocess
import tempfile

import cairo

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BIN = os.path.join(ROOT, "build/release/bin")
SHEETS = ["examples/letter.pdf", "examples/form.png", "examples/picture.png"]
COLUMNS = 110
PAPER = (0.90, 0.90, 0.90)

SESSION = [
    "qsscan list",
    "qsscan info | head -n 12",
    "qsscan scan --duplex --mode gray -p -o contract.pdf",
    "qsscan scan --mode mono --color-drop red --batch form%02d.png --pages 2",
    "qsscan scan --resolution 700 -o fine.tif; echo $?",
]


def start_scanner(folder):
    scanner = subprocess.Popen(
        [BIN + "/qs-virtual-scanner", "--hidden", "--reload", "--listen", "127.0.0.1:0", *SHEETS],
        cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    address = re.search(r"127\.0\.0\.1:\d+", scanner.stdout.readline()).group()
    return scanner, address


def run_session(folder, address):
    """Lines of the session: (is typed, text)."""
    config = os.path.join(folder, "qsscan")
    os.makedirs(config)
    with open(os.path.join(config, "qsscan.conf"), "w", encoding="utf-8") as file:
        file.write(f'default-device = "office"\n[device.office]\nname = "{address}"\n')
    environment = dict(os.environ, PATH=BIN + ":" + os.environ["PATH"], COLUMNS=str(COLUMNS), LC_ALL="C.UTF-8",
                       XDG_CONFIG_HOME=folder, XDG_STATE_HOME=os.path.join(folder, "state"))
    lines = []
    for command in SESSION:
        lines.append((True, "$ " + command))
        done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True, timeout=120,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        for line in done.stdout.splitlines():
            lines += [(False, line[i:i + COLUMNS]) for i in range(0, max(len(line), 1), COLUMNS)]
        lines.append((False, ""))
    return lines[:-1]


def draw_session(lines, path):
    size, leading, rim = 13, 17, 14
    width = round(COLUMNS * size * 0.602) + 2 * rim
    surface = cairo.ImageSurface(cairo.FORMAT_RGB24, width, len(lines) * leading + 2 * rim)
    c = cairo.Context(surface)
    c.set_source_rgb(0.11, 0.12, 0.14)
    c.paint()
    c.set_font_size(size)
    for number, (is_typed, text) in enumerate(lines):
        weight = cairo.FONT_WEIGHT_BOLD if is_typed else cairo.FONT_WEIGHT_NORMAL
        c.select_font_face("DejaVu Sans Mono", cairo.FONT_SLANT_NORMAL, weight)
        c.set_source_rgb(*((0.55, 0.85, 0.60) if is_typed else PAPER))
        c.move_to(rim, rim + number * leading + size)
        c.show_text(text)
    surface.write_to_png(path)


def png(data):
    return cairo.ImageSurface.create_from_png(io.BytesIO(data))


def scan(address, folder, *options):
    page = os.path.join(folder, "page.png")
    subprocess.run([BIN + "/qsscan", "scan", "-d", address, "--page-size", "a4", "--pages", "1", "-o", page, *options],
                   check=True, stderr=subprocess.DEVNULL)
    with open(page, "rb") as file:
        return png(file.read())


def draw_pages(pictures, path):
    width, rim, caption = 400, 16, 28
    height = round(width * 297 / 210)
    surface = cairo.ImageSurface(cairo.FORMAT_RGB24, len(pictures) * (width + rim) + rim, height + caption + 2 * rim)
    c = cairo.Context(surface)
    c.set_source_rgb(0.82, 0.82, 0.84)
    c.paint()
    for number, (text, picture) in enumerate(pictures):
        left = rim + number * (width + rim)
        c.save()
        c.translate(left, rim)
        c.scale(width / picture.get_width(), height / picture.get_height())
        c.set_source_surface(picture, 0, 0)
        c.get_source().set_filter(cairo.FILTER_BEST)
        c.paint()
        c.restore()
        c.select_font_face("DejaVu Sans", cairo.FONT_SLANT_NORMAL, cairo.FONT_WEIGHT_NORMAL)
        c.set_font_size(14)
        c.set_source_rgb(0.15, 0.15, 0.18)
        c.move_to(left, rim + height + 22)
        c.show_text(text)
    surface.write_to_png(path)


def main():
    sheet = png(subprocess.run(["pdftoppm", "-png", "-r", "300", "-f", "1", "-l", "1", ROOT + "/" + SHEETS[0]],
                               check=True, stdout=subprocess.PIPE).stdout)
    with tempfile.TemporaryDirectory() as folder:
        scanner, address = start_scanner(folder)
        try:
            draw_session(run_session(folder, address), ROOT + "/docs/session.png")
            draw_pages([("The sheet", sheet),
                        ("Scanned in color, 300 dpi", scan(address, folder, "--mode", "color")),
                        ("Scanned in mono, 300 dpi", scan(address, folder, "--mode", "mono"))],
                       ROOT + "/docs/sheet-and-page.png")
        finally:
            scanner.terminate()
            scanner.wait()


if __name__ == "__main__":
    main()
