#!/usr/bin/env python3
"""Draws the project's own pictures (icons, default avatars, emoticons) into
DuiLibRes/img and DuiLibRes/emoji. Plain Python: PNGs through zlib, one GIF
through a tiny uncompressed LZW stream. Run it again after changing a shape;
the outputs are committed."""

import math
import os
import struct
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
IMG = os.path.join(ROOT, "img")
EMOJI = os.path.join(ROOT, "emoji")

TEAL = (0x4E, 0xC5, 0xCE, 255)
DARK = (0x21, 0x28, 0x30, 255)
GREY = (0x8D, 0x8D, 0x8D, 255)
LIGHT = (0xE6, 0xE8, 0xEB, 255)
WHITE = (255, 255, 255, 255)
RED = (0xE5, 0x3E, 0x3E, 255)
YELLOW = (0xFF, 0xCC, 0x33, 255)
BROWN = (0x5A, 0x3A, 0x1A, 255)


class Canvas:
    def __init__(self, w, h, bg=(0, 0, 0, 0)):
        self.w, self.h = w, h
        self.px = [list(bg) for _ in range(w * h)]

    def blend(self, x, y, color, cover=1.0):
        if not (0 <= x < self.w and 0 <= y < self.h) or cover <= 0:
            return
        a = color[3] / 255.0 * min(cover, 1.0)
        p = self.px[y * self.w + x]
        out_a = a + p[3] / 255.0 * (1 - a)
        if out_a <= 0:
            return
        for i in range(3):
            p[i] = int(round((color[i] * a + p[i] * p[3] / 255.0 * (1 - a)) / out_a))
        p[3] = int(round(out_a * 255))

    def shape(self, inside, color, box=None):
        """Fills where inside(x, y) holds, 4x4 supersampled for soft edges."""
        x0, y0, x1, y1 = box or (0, 0, self.w, self.h)
        for y in range(max(0, int(y0)), min(self.h, int(math.ceil(y1)) + 1)):
            for x in range(max(0, int(x0)), min(self.w, int(math.ceil(x1)) + 1)):
                hits = sum(inside(x + (i + 0.5) / 4, y + (j + 0.5) / 4)
                           for i in range(4) for j in range(4))
                self.blend(x, y, color, hits / 16.0)

    def circle(self, cx, cy, r, color):
        self.shape(lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r, color,
                   (cx - r - 1, cy - r - 1, cx + r + 1, cy + r + 1))

    def ring(self, cx, cy, r, width, color):
        self.shape(lambda x, y: (r - width) ** 2 <= (x - cx) ** 2 + (y - cy) ** 2 <= r * r, color,
                   (cx - r - 1, cy - r - 1, cx + r + 1, cy + r + 1))

    def rect(self, x0, y0, x1, y1, color, radius=0):
        def inside(x, y):
            if not (x0 <= x <= x1 and y0 <= y <= y1):
                return False
            dx = max(x0 + radius - x, 0, x - (x1 - radius))
            dy = max(y0 + radius - y, 0, y - (y1 - radius))
            return dx * dx + dy * dy <= radius * radius
        self.shape(inside, color, (x0 - 1, y0 - 1, x1 + 1, y1 + 1))

    def line(self, xa, ya, xb, yb, width, color):
        def inside(x, y):
            vx, vy = xb - xa, yb - ya
            t = max(0.0, min(1.0, ((x - xa) * vx + (y - ya) * vy) / (vx * vx + vy * vy or 1)))
            return (x - xa - t * vx) ** 2 + (y - ya - t * vy) ** 2 <= (width / 2.0) ** 2
        self.shape(inside, color, (min(xa, xb) - width, min(ya, yb) - width,
                                   max(xa, xb) + width, max(ya, yb) + width))

    def arc(self, cx, cy, r, start, end, width, color):
        steps = 24
        pts = [(cx + r * math.cos(math.radians(start + (end - start) * i / steps)),
                cy + r * math.sin(math.radians(start + (end - start) * i / steps)))
               for i in range(steps + 1)]
        for (xa, ya), (xb, yb) in zip(pts, pts[1:]):
            self.line(xa, ya, xb, yb, width, color)

    def text(self, x, y, s, color, scale=2):
        for ch in s:
            rows = FONT.get(ch, FONT["?"])
            for j, row in enumerate(rows):
                for i, bit in enumerate(row):
                    if bit == "1":
                        for dy in range(scale):
                            for dx in range(scale):
                                self.blend(x + i * scale + dx, y + j * scale + dy, color)
            x += 4 * scale

    def png(self, path):
        raw = b"".join(b"\x00" + bytes(v for p in self.px[y * self.w:(y + 1) * self.w] for v in p)
                       for y in range(self.h))
        def chunk(tag, data):
            return (struct.pack(">I", len(data)) + tag + data +
                    struct.pack(">I", zlib.crc32(tag + data) & 0xFFFFFFFF))
        with open(path, "wb") as f:
            f.write(b"\x89PNG\r\n\x1a\n")
            f.write(chunk(b"IHDR", struct.pack(">IIBBBBB", self.w, self.h, 8, 6, 0, 0, 0)))
            f.write(chunk(b"IDAT", zlib.compress(raw, 9)))
            f.write(chunk(b"IEND", b""))


# 3x5 capitals and digits for the file-type labels.
FONT = {
    "A": ["010", "101", "111", "101", "101"], "B": ["110", "101", "110", "101", "110"],
    "C": ["011", "100", "100", "100", "011"], "D": ["110", "101", "101", "101", "110"],
    "E": ["111", "100", "110", "100", "111"], "F": ["111", "100", "110", "100", "100"],
    "G": ["011", "100", "101", "101", "011"], "I": ["111", "010", "010", "010", "111"],
    "J": ["001", "001", "001", "101", "010"], "K": ["101", "101", "110", "101", "101"],
    "L": ["100", "100", "100", "100", "111"], "M": ["101", "111", "111", "101", "101"],
    "N": ["110", "101", "101", "101", "101"], "O": ["010", "101", "101", "101", "010"],
    "P": ["110", "101", "110", "100", "100"], "R": ["110", "101", "110", "101", "101"],
    "S": ["011", "100", "010", "001", "110"], "T": ["111", "010", "010", "010", "010"],
    "U": ["101", "101", "101", "101", "111"], "W": ["101", "101", "111", "111", "101"],
    "X": ["101", "101", "010", "101", "101"], "Z": ["111", "001", "010", "100", "111"],
    "?": ["110", "001", "010", "000", "010"], "!": ["010", "010", "010", "000", "010"],
}


def person(c, cx, cy, scale, color):
    c.circle(cx, cy - 5 * scale, 5 * scale, color)
    c.shape(lambda x, y: ((x - cx) / (9 * scale)) ** 2 + ((y - cy - 10 * scale) / (7 * scale)) ** 2 <= 1
            and y <= cy + 9 * scale, color)


def avatar(name, draw):
    c = Canvas(44, 44)
    c.rect(0, 0, 44, 44, LIGHT, radius=6)
    draw(c)
    c.png(os.path.join(IMG, name))


def file_icon(name, label, color):
    c = Canvas(40, 48)
    c.shape(lambda x, y: 4 <= x <= 36 and 2 <= y <= 46 and not (x > 26 and y < 2 + (x - 26)), WHITE)
    c.line(4, 2, 26, 2, 1.5, GREY); c.line(26, 2, 36, 12, 1.5, GREY); c.line(36, 12, 36, 46, 1.5, GREY)
    c.line(36, 46, 4, 46, 1.5, GREY); c.line(4, 46, 4, 2, 1.5, GREY)
    c.rect(4, 26, 36, 40, color)
    scale = 2 if len(label) <= 3 else 1
    width = len(label) * 4 * scale - scale
    c.text(int(20 - width / 2), 33 - 5 * scale // 2, label, WHITE, scale)
    c.png(os.path.join(IMG, name))


def icon(name, size, draw, bg=None):
    c = Canvas(size, size)
    if bg:
        c.rect(0, 0, size, size, bg, radius=size // 5)
    draw(c)
    c.png(os.path.join(IMG, name))


def bubble(c, color, s=1.0):
    c.rect(8 * s, 10 * s, 32 * s, 26 * s, color, radius=5 * s)
    c.shape(lambda x, y: y >= 25 * s and x >= 12 * s and y <= 31 * s - (x - 12 * s) * 0.8, color)


def gif_spinner(path, size=32, frames=8):
    """An animated ring of dots; each frame is stored as 9-bit LZW literals."""
    palette = [(255, 255, 255), (0x4E, 0xC5, 0xCE), (0xB8, 0xE6, 0xEA), (0xE6, 0xE8, 0xEB)]
    palette += [(0, 0, 0)] * (256 - len(palette))
    out = bytearray(b"GIF89a" + struct.pack("<HHBBB", size, size, 0xF7, 0, 0))
    out += bytes(v for rgb in palette for v in rgb)
    out += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"
    for f in range(frames):
        img = [0] * (size * size)
        for k in range(frames):
            ang = 2 * math.pi * k / frames
            cx, cy = size / 2 + 11 * math.cos(ang), size / 2 + 11 * math.sin(ang)
            shade = 1 if k == f else (2 if (f - k) % frames in (1, 2) else 3)
            for y in range(size):
                for x in range(size):
                    if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= 9:
                        img[y * size + x] = shade
        out += b"\x21\xF9\x04\x04\x0A\x00\x00\x00"  # 100 ms per frame
        out += b"\x2C" + struct.pack("<HHHHB", 0, 0, size, size, 0) + b"\x08"
        bits, nbits, data = 0, 0, bytearray()
        def emit(code):
            nonlocal bits, nbits
            bits |= code << nbits
            nbits += 9
            while nbits >= 8:
                data.append(bits & 0xFF)
                bits >>= 8
                nbits -= 8
        emit(256)
        for i, p in enumerate(img):
            if i and i % 250 == 0:
                emit(256)  # clear before the code width would grow
            emit(p)
        emit(257)
        if nbits:
            data.append(bits & 0xFF)
        for i in range(0, len(data), 255):
            block = data[i:i + 255]
            out += bytes([len(block)]) + block
        out += b"\x00"
    out += b"\x3B"
    with open(path, "wb") as fh:
        fh.write(out)


EMOTICONS = ["Muah", "Snicker", "Arrogant", "Goodbye", "ColdSweat", "Daze", "Pathetic", "Lovely",
             "RightHum", "ThrewUp", "Scare", "Curse", "Hush", "Leepy", "Smirk", "Cry", "Struggle",
             "Wronged", "Shy", "Awkward", "LeftHum", "Proud", "Smile", "Angry", "Panic",
             "Surprised", "SillySmile", "Yawn", "Crazy", "Torture", "PickNose", "Squirming",
             "WipeSweat", "Dizzy", "Sweat", "Tears", "Doubt", "Contempt", "GoToBed", "Shame",
             "Lascivious", "Naughty", "Despise", "Cool", "ShutUp", "Insidious", "Sad", "Hunger",
             "Applaud"]


def emoticon(index, name):
    """A round face; eyes, mouth and an extra mark vary with the index so that
    every emoticon of the picker looks different."""
    c = Canvas(32, 32)
    tint = [YELLOW, (0xFF, 0xB8, 0x4D, 255), (0xFF, 0xD9, 0x66, 255), (0xF5, 0xA6, 0x23, 255)][index % 4]
    c.circle(16, 16, 14.5, tint)
    eyes = index % 5
    for ex in (11, 21):
        if eyes == 0:
            c.circle(ex, 13, 2, BROWN)
        elif eyes == 1:
            c.line(ex - 2.5, 13, ex + 2.5, 13, 1.6, BROWN)
        elif eyes == 2:
            c.arc(ex, 14, 2.5, 200, 340, 1.5, BROWN)
        elif eyes == 3:
            c.circle(ex, 13, 3, WHITE); c.circle(ex, 13, 1.5, BROWN)
        else:
            c.line(ex - 2, 11, ex + 2, 15, 1.4, BROWN); c.line(ex - 2, 15, ex + 2, 11, 1.4, BROWN)
    mouth = (index // 5) % 5
    if mouth == 0:
        c.arc(16, 18, 6, 20, 160, 1.8, BROWN)
    elif mouth == 1:
        c.arc(16, 26, 6, 200, 340, 1.8, BROWN)
    elif mouth == 2:
        c.circle(16, 22, 3, BROWN)
    elif mouth == 3:
        c.line(11, 22, 21, 22, 1.8, BROWN)
    else:
        c.shape(lambda x, y: y >= 19 and (x - 16) ** 2 / 36 + (y - 19) ** 2 / 25 <= 1, BROWN)
    extra = index // 25
    if extra == 1 and index % 3 == 0:
        c.circle(25, 8, 2.5, (0x6C, 0xB4, 0xEE, 255))  # a drop of sweat
    elif extra == 1 and index % 3 == 1:
        c.circle(8, 19, 2.5, (0xFF, 0x88, 0x99, 200))  # a blush
        c.circle(24, 19, 2.5, (0xFF, 0x88, 0x99, 200))
    elif extra == 1:
        c.line(8, 7, 13, 9, 1.4, BROWN); c.line(24, 7, 19, 9, 1.4, BROWN)  # brows
    c.png(os.path.join(EMOJI, name + ".png"))


def main():
    os.makedirs(IMG, exist_ok=True)
    os.makedirs(EMOJI, exist_ok=True)

    icon("UnReadDot.png", 8, lambda c: c.circle(4, 4, 4, RED))
    for page, draw in (("RecentConver", lambda c, col: bubble(c, col)),
                       ("FriendsList", lambda c, col: person(c, 20, 18, 1.0, col))):
        for state, col in (("normal", GREY), ("selected", TEAL)):
            icon("%s_%s.png" % (page, state), 40, lambda c, d=draw, col=col: d(c, col))

    avatar("PersonDefaultImg.png", lambda c: person(c, 22, 20, 1.3, GREY))
    avatar("GroupDefaultImg.png", lambda c: (person(c, 15, 21, 0.9, GREY), person(c, 29, 21, 0.9, GREY)))
    avatar("NewFriend.png", lambda c: (c.rect(0, 0, 44, 44, (0xF5, 0xA6, 0x23, 255), 6),
                                       person(c, 19, 21, 1.1, WHITE),
                                       c.line(30, 14, 38, 14, 2.5, WHITE), c.line(34, 10, 34, 18, 2.5, WHITE)))
    avatar("GroupChat.png", lambda c: (c.rect(0, 0, 44, 44, TEAL, 6),
                                       person(c, 15, 21, 0.9, WHITE), person(c, 29, 21, 0.9, WHITE)))

    labels = {"BMP": (0x8E, 0x5B, 0xD6), "DOCX": (0x2B, 0x6C, 0xD4), "DWG": (0xD4, 0x3F, 0x3F),
              "DXF": (0xC2, 0x5E, 0x1F), "FON": (0x55, 0x55, 0x55), "JPG": (0x2E, 0x9E, 0x6B),
              "OCF": (0x6B, 0x6B, 0x9E), "PDF": (0xC6, 0x28, 0x28), "PNG": (0x1F, 0x8A, 0x9E),
              "PPT": (0xD2, 0x6A, 0x2E), "PPTX": (0xD2, 0x6A, 0x2E), "RAR": (0x7A, 0x4A, 0x2A),
              "XLS": (0x1D, 0x7A, 0x46), "XLSX": (0x1D, 0x7A, 0x46), "ZIP": (0x7A, 0x4A, 0x2A),
              "UNKNOW": None}
    for label, rgb in labels.items():
        file_icon(label + ".png", "?" if rgb is None else label, GREY if rgb is None else rgb + (255,))
    file_icon("FILELOSE.png", "!", RED)
    icon("FileLoaded.png", 16, lambda c: (c.circle(8, 8, 8, TEAL), c.line(4, 8, 7, 11, 2, WHITE),
                                          c.line(7, 11, 12, 5, 2, WHITE)))
    icon("FileLoadError.png", 16, lambda c: (c.circle(8, 8, 8, RED), c.line(5, 5, 11, 11, 2, WHITE),
                                             c.line(11, 5, 5, 11, 2, WHITE)))
    icon("FilepUpLoaded.png", 16, lambda c: (c.circle(8, 8, 8, TEAL), c.line(8, 12, 8, 4, 2, WHITE),
                                             c.line(4, 8, 8, 4, 2, WHITE), c.line(12, 8, 8, 4, 2, WHITE)))
    c = Canvas(240, 64, (0xF7, 0xF8, 0xFA, 255))
    c.rect(0.5, 0.5, 239.5, 63.5, (0xDD, 0xE0, 0xE4, 255), radius=6)
    c.rect(2, 2, 238, 62, (0xF7, 0xF8, 0xFA, 255), radius=5)
    c.png(os.path.join(IMG, "backgroud.png"))

    def picture(c, broken):
        c.rect(2, 6, 46, 42, LIGHT, radius=4)
        c.shape(lambda x, y: y >= 36 - (x - 6) * 0.8 and y >= 20 + (x - 24) * 0.9 and y <= 38, GREY)
        c.circle(34, 15, 4, GREY)
        if broken:
            c.line(14, 12, 36, 36, 3, RED); c.line(36, 12, 14, 36, 3, RED)
    icon("LOAD_IMAGE.png", 48, lambda c: picture(c, False))
    icon("image_error.png", 48, lambda c: picture(c, True))
    icon("Voice.png", 24, lambda c: (c.circle(6, 12, 3, DARK), c.arc(6, 12, 8, -45, 45, 2, DARK),
                                     c.arc(6, 12, 13, -45, 45, 2, DARK)))
    def video(c, broken):
        c.rect(2, 10, 46, 38, DARK, radius=4)
        c.shape(lambda x, y: x >= 19 and abs(y - 24) <= (31 - x) * 0.7, WHITE)
        if broken:
            c.line(10, 14, 38, 34, 3, RED)
    icon("videoTip.png", 48, lambda c: video(c, False))
    icon("image_video_error.png", 48, lambda c: video(c, True))
    gif_spinner(os.path.join(IMG, "loading.gif"))

    # Buttons of the chat window.
    icon("close.png", 16, lambda c: (c.line(3, 3, 13, 13, 1.8, GREY), c.line(13, 3, 3, 13, 1.8, GREY)))
    icon("emoticon.png", 24, lambda c: (c.ring(12, 12, 10, 1.8, GREY), c.circle(8.5, 9.5, 1.5, GREY),
                                        c.circle(15.5, 9.5, 1.5, GREY), c.arc(12, 12, 5.5, 30, 150, 1.6, GREY)))
    icon("upload_image.png", 24, lambda c: (c.rect(2, 4, 22, 20, GREY, 3), c.rect(4, 6, 20, 18, WHITE, 2),
                                            c.circle(15, 10, 2, GREY),
                                            c.shape(lambda x, y: y >= 17 - (x - 5) * 0.6 and y <= 18 and x <= 16, GREY)))
    icon("upload_file.png", 24, lambda c: (c.rect(5, 2, 19, 22, GREY, 2), c.rect(7, 4, 17, 20, WHITE, 1),
                                           c.line(9, 9, 15, 9, 1.5, GREY), c.line(9, 13, 15, 13, 1.5, GREY)))
    icon("upload_drawing.png", 24, lambda c: (c.rect(3, 3, 21, 21, GREY, 2), c.rect(5, 5, 19, 19, WHITE, 1),
                                              c.line(7, 17, 17, 7, 1.5, GREY), c.line(7, 7, 7, 17, 1.5, GREY),
                                              c.line(7, 17, 17, 17, 1.5, GREY)))
    icon("history.png", 24, lambda c: (c.ring(12, 12, 10, 1.8, GREY), c.line(12, 12, 12, 6, 1.8, GREY),
                                       c.line(12, 12, 16, 14, 1.8, GREY)))
    def gear(c):
        for k in range(8):
            a = math.radians(k * 45)
            c.line(20 + 9 * math.cos(a), 20 + 9 * math.sin(a), 20 + 14 * math.cos(a), 20 + 14 * math.sin(a), 5, GREY)
        c.ring(20, 20, 11, 5, GREY)
    icon("setup.png", 40, gear)
    icon("add.png", 24, lambda c: (c.line(12, 5, 12, 19, 2.2, GREY), c.line(5, 12, 19, 12, 2.2, GREY)))
    icon("search.png", 16, lambda c: (c.ring(7, 7, 5.5, 1.6, GREY), c.line(11, 11, 15, 15, 1.8, GREY)))
    icon("shared_chat.png", 24, lambda c: (bubble(c, TEAL, 0.6), c.rect(13, 12, 23, 22, GREY, 2)))
    icon("chat_draw.png", 24, lambda c: (c.rect(3, 5, 21, 19, TEAL, 2), c.line(6, 16, 12, 9, 1.6, WHITE),
                                         c.line(12, 9, 18, 16, 1.6, WHITE)))
    icon("group_function.png", 24, lambda c: [c.circle(12, y, 2, GREY) for y in (5, 12, 19)])
    icon("send.png", 24, lambda c: c.shape(lambda x, y: x >= 3 and abs(y - 12) <= (21 - x) * 0.5 and not (x < 9 and abs(y - 12) < 2), WHITE))
    icon("network_down.png", 48, lambda c: (c.arc(24, 30, 18, 215, 325, 3, GREY), c.arc(24, 30, 11, 215, 325, 3, GREY),
                                            c.circle(24, 30, 3, GREY), c.line(10, 8, 38, 40, 3, RED)))
    icon("logo.png", 96, lambda c: (bubble(c, TEAL, 2.4), c.circle(37, 43, 3.5, WHITE),
                                     c.circle(48, 43, 3.5, WHITE), c.circle(59, 43, 3.5, WHITE)))
    icon("self_avatar.png", 40, lambda c: (c.circle(20, 20, 20, TEAL), person(c, 20, 20, 1.1, WHITE)))

    for i, name in enumerate(EMOTICONS):
        emoticon(i, name)


if __name__ == "__main__":
    main()
