"""What the tests of the example programs share: pictures and volumes, running a program, what a refusal looks like."""

import gzip
import os
import random
import struct
import subprocess
import tempfile
import unittest
import zlib


def write_png(path, rows, depth=8):
    """Grey samples in rows of numbers."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    sample = "B" if depth == 8 else "H"
    lines = b"".join(b"\0" + struct.pack(">%d%s" % (len(row), sample), *row) for row in rows)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n"
                   + chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows[0]), len(rows), depth, 0, 0, 0, 0))
                   + chunk(b"IDAT", zlib.compress(lines, 1)) + chunk(b"IEND", b""))


def read_png(path):
    """Rows of pixels of an 8 bit file: numbers when grey, triples when in colour."""
    with open(path, "rb") as file:
        data = file.read()
    width, height, depth, colour = struct.unpack(">IIBB", data[16:26])
    assert depth == 8 and colour in (0, 2), (depth, colour)
    packed, at = b"", 8
    while at < len(data):
        length = struct.unpack(">I", data[at:at + 4])[0]
        if data[at + 4:at + 8] == b"IDAT":
            packed += data[at + 8:at + 8 + length]
        at += 12 + length
    raw, channels, rows = zlib.decompress(packed), 3 if colour else 1, []
    above = bytearray(width * channels)
    for y in range(height):
        start = y * (width * channels + 1)
        line = bytearray(raw[start + 1:start + 1 + width * channels])
        for i in range(len(line)):
            a = line[i - channels] if i >= channels else 0
            b, c = above[i], above[i - channels] if i >= channels else 0
            nearest = min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]
            line[i] = (line[i] + (0, a, b, (a + b) // 2, nearest)[raw[start]]) % 256
        rows.append([tuple(line[i:i + 3]) for i in range(0, len(line), 3)] if colour else list(line))
        above = line
    return rows


def write_nifti(path, slices, spacing=(1, 1, 1)):
    """Slices of rows of numbers from 0 to 255."""
    sizes = (len(slices[0][0]), len(slices[0]), len(slices))
    header = bytearray(352)
    struct.pack_into("<i", header, 0, 348)
    struct.pack_into("<8h", header, 40, 3, *sizes, 1, 1, 1, 1)
    struct.pack_into("<2h", header, 70, 2, 8)  # unsigned bytes
    struct.pack_into("<5f", header, 76, 1, *spacing, 0)
    struct.pack_into("<3f", header, 108, 352, 1, 0)
    header[123] = 2  # millimetres
    header[344:348] = b"n+1\0"
    with (gzip.open if path.endswith(".gz") else open)(path, "wb") as file:
        file.write(bytes(header) + bytes(value for rows in slices for row in rows for value in row))


def read_nifti(path):
    """Slices of rows of a file of unsigned bytes, and its header."""
    with (gzip.open if path.endswith(".gz") else open)(path, "rb") as file:
        data = file.read()
    width, height, depth, kind = *struct.unpack("<3h", data[42:48]), struct.unpack("<h", data[70:72])[0]
    assert kind == 2 and len(data) == 352 + width * height * depth, (kind, len(data))
    rows = [list(data[at:at + width]) for at in range(352, len(data), width)]
    return [rows[at:at + height] for at in range(0, len(rows), height)], data[:352]


def textured(width, height):
    """Discs of several greys on a noisy ground: strong and weak edges, and weak ones that hang together with strong."""
    numbers = random.Random(7)
    discs = [(numbers.uniform(0, width), numbers.uniform(0, height), numbers.uniform(4, 20), numbers.randint(0, 215))
             for _ in range(25)]
    def value(x, y):
        grey = 100
        for cx, cy, radius, level in discs:
            if (x - cx) ** 2 + (y - cy) ** 2 < radius ** 2:
                grey = level
        return grey + numbers.randint(0, 40)
    return [[value(x, y) for x in range(width)] for y in range(height)]


class ProgramTestCase(unittest.TestCase):
    """Runs `program` in a folder of its own, which holds the picture discs.v1.png."""

    program = None
    picture = textured(150, 130)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        write_png(self.path("discs.v1.png"), self.picture)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def run_program(self, *arguments, **environment):
        return subprocess.run([self.program, *arguments], cwd=self.folder, env={**os.environ, **environment}, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL)

    def succeed(self, *arguments, **environment):
        result = self.run_program(*arguments, **environment)
        self.assertEqual((0, ""), (result.returncode, result.stderr), arguments)
        return result.stdout

    def contents(self):
        """All files with their bytes, and all folders."""
        found = {}
        for folder, _, names in os.walk(self.folder):
            found[folder] = None
            found.update((os.path.join(folder, name), self.bytes_of(folder, name)) for name in names)
        return found

    def refuse(self, status, texts, *arguments, **environment):
        before = self.contents()
        result = self.run_program(*arguments, **environment)
        self.assertEqual((status, ""), (result.returncode, result.stdout), (arguments, result.stderr))
        self.assertRegex(result.stderr, r"\A%s: [^\n]*\n\Z" % os.path.basename(self.program), arguments)
        for text in texts:
            self.assertIn(text, result.stderr, arguments)
        self.assertTrue(before == self.contents(), arguments)

    def refuse_taken_names(self, *outputs, source="discs.v1.png"):
        """A folder in the place of one output, older files in those of the others, which stay as they were."""
        for taken in outputs:
            os.makedirs(self.path("without " + taken, taken))
            for name in set(outputs) - {taken}:
                with open(self.path("without " + taken, name), "w") as file:
                    file.write("older")
            self.refuse(1, [taken, "directory"], source, "-o", "without " + taken)

    def bytes_of(self, *names):
        with open(self.path(*names), "rb") as file:
            return file.read()
