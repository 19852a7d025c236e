#!/usr/bin/python3
"""Draws the example sheets that the demo scans: a letter, a form and a page with a picture.

    apt-get install python3-cairo fonts-dejavu-core
    /usr/bin/python3 examples/draw_sheets.py

The sheets are kept beside this script, so nobody needs to run it to use them. Sizes are physical: A4, each file says so
in its own way (PDF page box, PNG pHYs).
"""
import math
import os
import struct
import zlib

import cairo

HERE = os.path.dirname(os.path.abspath(__file__))
MM = 72 / 25.4  # points
A4 = (210 * MM, 297 * MM)
INK = (0.08, 0.08, 0.12)
RED = (0.75, 0.10, 0.12)
BLUE = (0.10, 0.25, 0.60)


def text(c, x, y, words, size=11, face="DejaVu Serif", bold=False, color=INK):
    c.select_font_face(face, cairo.FONT_SLANT_NORMAL, cairo.FONT_WEIGHT_BOLD if bold else cairo.FONT_WEIGHT_NORMAL)
    c.set_font_size(size)
    c.set_source_rgb(*color)
    c.move_to(x * MM, y * MM)
    c.show_text(words)


def paragraph(c, x, y, width, words, size=11, leading=5.6):
    c.select_font_face("DejaVu Serif", cairo.FONT_SLANT_NORMAL, cairo.FONT_WEIGHT_NORMAL)
    c.set_font_size(size)
    c.set_source_rgb(*INK)
    line = ""
    for word in words.split():
        trial = (line + " " + word).strip()
        if c.text_extents(trial).x_advance > width * MM:
            c.move_to(x * MM, y * MM)
            c.show_text(line)
            y += leading
            line = word
        else:
            line = trial
    c.move_to(x * MM, y * MM)
    c.show_text(line)
    return y + leading * 1.5


def paper(c):
    c.set_source_rgb(1, 1, 1)
    c.paint()


def letter_front(c):
    paper(c)
    c.set_source_rgb(*BLUE)
    c.rectangle(20 * MM, 18 * MM, 170 * MM, 1.2 * MM)
    c.fill()
    text(c, 20, 15, "Harbour & Heron, Bookbinders", 16, bold=True, color=BLUE)
    text(c, 138, 15, "12 Quay Lane, Eastport", 10)
    text(c, 20, 45, "Ms Ada Winter", 11)
    text(c, 20, 51, "The Old Mill", 11)
    text(c, 20, 57, "Northbrook", 11)
    text(c, 150, 57, "3 October", 11)
    text(c, 20, 78, "Your forty-two volumes", 13, bold=True)
    y = 92
    for words in (
        "Dear Ms Winter,",
        "thank you for the boxes, which arrived dry and complete. We have collated every volume against your list. Three "
        "are missing their title pages; we photographed the neighbouring leaves and will bind blanks in their place, so "
        "that the pages can be set in later without opening the spine.",
        "The red goatskin that you chose takes the tooling well. You will find a sample on the back of this sheet, "
        "together with the two alternatives that we would suggest for the atlas, whose weight asks for a stronger board.",
        "If you agree, please return the enclosed form. Work begins in the week in which it reaches us and takes "
        "eleven weeks. We shall write again when the first ten volumes stand on the shelf.",
        "With kind regards",
    ):
        y = paragraph(c, 20, y, 168, words)
    c.set_source_rgb(*BLUE)
    c.set_line_width(1.4)
    c.move_to(22 * MM, (y + 12) * MM)
    for i in range(60):
        c.line_to((22 + i * 0.8) * MM, (y + 10 + 4 * math.sin(i * 0.7) * math.exp(-i / 40)) * MM)
    c.stroke()
    text(c, 20, y + 22, "J. Heron", 11)
    text(c, 86, 285, "page 1 of 2", 9)


def letter_back(c):
    paper(c)
    text(c, 20, 30, "Samples", 16, bold=True, color=BLUE)
    for i, (name, color) in enumerate(
        (("red goatskin", (0.62, 0.12, 0.14)), ("green calf", (0.13, 0.38, 0.24)), ("blue buckram", (0.16, 0.26, 0.52)))
    ):
        y = 45 + i * 62
        c.set_source_rgb(*color)
        c.rectangle(20 * MM, y * MM, 80 * MM, 45 * MM)
        c.fill()
        c.set_source_rgb(0.85, 0.70, 0.35)
        c.set_line_width(2)
        c.rectangle(25 * MM, (y + 5) * MM, 70 * MM, 35 * MM)
        c.stroke()
        text(c, 112, y + 24, name, 14)
    text(c, 86, 285, "page 2 of 2", 9)


def form(c):
    paper(c)
    text(c, 20, 28, "Order form", 20, face="DejaVu Sans", bold=True)
    text(c, 20, 37, "Please fill in with a dark pen and keep inside the boxes.", 10, face="DejaVu Sans")
    c.set_source_rgb(*INK)
    c.set_line_width(0.8)
    for row, name in enumerate(("Name", "Street", "Town", "Telephone")):
        y = 50 + row * 16
        text(c, 20, y + 7, name, 10, face="DejaVu Sans")
        for column in range(24):
            c.rectangle((52 + column * 5.8) * MM, y * MM, 5.8 * MM, 9 * MM)
        c.stroke()
    for i, letter in enumerate("ADA WINTER"):
        text(c, 53.2 + i * 5.8, 57, letter, 14, face="DejaVu Sans Mono", color=(0.1, 0.1, 0.3))
    for row, name in enumerate(("Red goatskin", "Green calf", "Blue buckram", "Send me a sample first")):
        y = 126 + row * 12
        c.set_source_rgb(*INK)
        c.rectangle(20 * MM, y * MM, 6 * MM, 6 * MM)
        c.stroke()
        text(c, 30, y + 5, name, 11, face="DejaVu Sans")
    c.set_line_width(2)
    c.move_to(20.5 * MM, 129 * MM)
    c.line_to(22.5 * MM, 132 * MM)
    c.line_to(27 * MM, 125 * MM)
    c.stroke()
    c.set_line_width(0.8)
    for row in range(9):
        c.move_to(20 * MM, (185 + row * 8) * MM)
        c.line_to(190 * MM, (185 + row * 8) * MM)
    for column in (20, 40, 130, 160, 190):
        c.move_to(column * MM, 185 * MM)
        c.line_to(column * MM, 249 * MM)
    c.stroke()
    for column, name in ((22, "Volume"), (42, "Title"), (132, "Boards"), (162, "Price")):
        text(c, column, 190.5, name, 9, face="DejaVu Sans", bold=True)
    for row in range(6):
        text(c, 22, 198.5 + row * 8, str(row + 1), 9, face="DejaVu Sans")
        text(c, 42, 198.5 + row * 8, "Voyages, part %d" % (row + 1), 9, face="DejaVu Sans")
        text(c, 162, 198.5 + row * 8, "%d.00" % (38 + 3 * row), 9, face="DejaVu Sans")
    for i in range(48):  # something fine for the scanner's eye
        c.rectangle((20 + i * 1.2) * MM, 262 * MM, (0.25 + (i * 7 % 5) * 0.15) * MM, 14 * MM)
    c.fill()


def picture(c):
    paper(c)
    text(c, 20, 25, "Eastport, from the water", 18, bold=True, color=RED)
    c.save()
    c.rectangle(20 * MM, 35 * MM, 170 * MM, 150 * MM)
    c.clip()
    sky = cairo.LinearGradient(0, 35 * MM, 0, 130 * MM)
    for stop, color in ((0, (0.20, 0.38, 0.68)), (0.6, (0.95, 0.72, 0.48)), (1, (0.98, 0.86, 0.64))):
        sky.add_color_stop_rgb(stop, *color)
    c.set_source(sky)
    c.paint()
    sun = cairo.RadialGradient(140 * MM, 100 * MM, 3 * MM, 140 * MM, 100 * MM, 40 * MM)
    sun.add_color_stop_rgba(0, 1, 0.97, 0.80, 1)
    sun.add_color_stop_rgba(0.15, 1, 0.92, 0.60, 0.8)
    sun.add_color_stop_rgba(1, 1, 0.85, 0.55, 0)
    c.set_source(sun)
    c.paint()
    for depth, (base, color) in enumerate(((112, (0.45, 0.44, 0.58)), (122, (0.28, 0.36, 0.40)), (131, (0.16, 0.28, 0.22)))):
        c.set_source_rgb(*color)
        c.move_to(20 * MM, 190 * MM)
        for x in range(20, 192, 2):
            ridge = base - 9 * math.sin(x / (17 - depth * 3) + depth) - 5 * math.sin(x / 7.3 + depth * 2)
            c.line_to(x * MM, ridge * MM)
        c.line_to(190 * MM, 190 * MM)
        c.fill()
    water = cairo.LinearGradient(0, 138 * MM, 0, 185 * MM)
    water.add_color_stop_rgb(0, 0.72, 0.62, 0.52)
    water.add_color_stop_rgb(1, 0.10, 0.20, 0.36)
    c.set_source(water)
    c.rectangle(20 * MM, 138 * MM, 170 * MM, 50 * MM)
    c.fill()
    for i, (x, color) in enumerate(((35, RED), (52, (0.9, 0.8, 0.3)), (70, BLUE), (88, (0.8, 0.45, 0.2)))):
        c.set_source_rgb(*color)
        c.rectangle(x * MM, (118 + i % 2 * 3) * MM, 13 * MM, 20 * MM)
        c.fill()
        c.set_source_rgb(0.25, 0.15, 0.12)
        c.move_to((x - 1) * MM, (118 + i % 2 * 3) * MM)
        c.line_to((x + 6.5) * MM, (109 + i % 2 * 3) * MM)
        c.line_to((x + 14) * MM, (118 + i % 2 * 3) * MM)
        c.fill()
    c.set_source_rgb(0.96, 0.96, 0.92)
    c.move_to(120 * MM, 150 * MM)
    c.line_to(120 * MM, 118 * MM)
    c.line_to(138 * MM, 148 * MM)
    c.fill()
    c.set_source_rgb(0.35, 0.18, 0.10)
    c.move_to(108 * MM, 152 * MM)
    c.curve_to(112 * MM, 162 * MM, 136 * MM, 162 * MM, 142 * MM, 152 * MM)
    c.fill()
    c.restore()
    paragraph(c, 20, 197, 168, "The town keeps its back to the hills and its face to the water. Whoever comes by boat sees the "
              "four houses of the quay first, each in the colour that its owner's grandmother chose.")
    for i in range(256):  # a ramp of grey and one of each colour, to judge tones by
        for row, color in enumerate(((1, 1, 1), (1, 0, 0), (0, 0.7, 0), (0, 0, 1))):
            c.set_source_rgb(*(v * i / 255 for v in color))
            c.rectangle((20 + i * 170 / 256) * MM, (232 + row * 10) * MM, 0.8 * MM, 8 * MM)
            c.fill()


def pdf(name, pages):
    surface = cairo.PDFSurface(os.path.join(HERE, name), *A4)
    surface.set_metadata(cairo.PDFMetadata.CREATE_DATE, "2026-11-21T00:00:00Z")
    c = cairo.Context(surface)
    for draw in pages:
        draw(c)
        c.show_page()
    surface.finish()


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def png(name, draw, dpi, gray):
    width, height = round(210 / 25.4 * dpi), round(297 / 25.4 * dpi)
    surface = cairo.ImageSurface(cairo.FORMAT_RGB24, width, height)
    c = cairo.Context(surface)
    c.scale(dpi / 72, dpi / 72)
    draw(c)
    surface.flush()
    pixels, stride = bytes(surface.get_data()), surface.get_stride()
    rows = []
    for y in range(height):
        row = pixels[y * stride:y * stride + width * 4]
        if gray:
            line = row[1::4]
        else:
            line = bytearray(width * 3)
            line[0::3], line[1::3], line[2::3] = row[2::4], row[1::4], row[0::4]
        rows.append(b"\0" + bytes(line))
    per_metre = round(dpi / 0.0254)
    with open(os.path.join(HERE, name), "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0 if gray else 2, 0, 0, 0)))
        file.write(chunk(b"pHYs", struct.pack(">IIB", per_metre, per_metre, 1)))
        file.write(chunk(b"IDAT", zlib.compress(b"".join(rows), 9)))
        file.write(chunk(b"IEND", b""))


pdf("letter.pdf", (letter_front, letter_back))
png("form.png", form, 300, gray=True)
png("picture.png", picture, 150, gray=False)
