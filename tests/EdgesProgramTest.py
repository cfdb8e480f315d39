#!/usr/bin/env python3
"""Runs the program edges as a user does: EdgesProgramTest.py PATH_OF_EDGES."""

import os
import pty
import random
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

EDGES = None


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


class EdgesProgramTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.picture = textured(150, 130)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        write_png(self.path("discs.v1.png"), self.picture)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def run_edges(self, *arguments, **environment):
        return subprocess.run([EDGES, *arguments], cwd=self.folder, env={**os.environ, **environment}, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL)

    def succeed(self, *arguments, **environment):
        result = self.run_edges(*arguments, **environment)
        self.assertEqual((0, ""), (result.returncode, result.stderr), arguments)
        return result.stdout

    def refuse(self, status, texts, *arguments, **environment):
        before = sorted(os.walk(self.folder))
        result = self.run_edges(*arguments, **environment)
        self.assertEqual((status, ""), (result.returncode, result.stdout), (arguments, result.stderr))
        self.assertRegex(result.stderr, r"\Aedges: [^\n]*\n\Z", arguments)
        for text in texts:
            self.assertIn(text, result.stderr, arguments)
        self.assertEqual(before, sorted(os.walk(self.folder)), arguments)

    def bytes_of(self, *names):
        with open(self.path(*names), "rb") as file:
            return file.read()

    def test_writes_edges_and_overlay(self):
        report = self.succeed("discs.v1.png")
        edges, overlay = read_png(self.path("discs.v1-edges.png")), read_png(self.path("discs.v1-overlay.png"))
        self.assertEqual(["discs.v1-edges.png", "discs.v1-overlay.png", "discs.v1.png"],
                         sorted(os.listdir(self.folder)))
        self.assertEqual([[(255, 0, 0) if edge == 255 else (grey,) * 3 for edge, grey in zip(*rows)]
                          for rows in zip(edges, self.picture)], overlay)
        self.assertEqual({0, 255}, {edge for row in edges for edge in row})
        number = sum(row.count(255) for row in edges)
        self.assertIn("150 x 130, 8 bit unsigned", report)
        self.assertIn("edges       %d of 19500 pixels (%.3g %%)" % (number, number / 195.0), report)
        self.assertRegex(report, r"time +read [\d.]+ ms, gradient [\d.]+ ms, .*edges [\d.]+ ms, write [\d.]+ ms")

    def test_finds_the_outline_of_a_square(self):
        write_png(self.path("square.png"), [[200 if 20 <= x < 60 and 20 <= y < 60 else 10 for x in range(80)]
                                            for y in range(80)])

        def marked_pixels():
            edges = read_png(self.path("square-edges.png"))
            return {(x, y) for y in range(80) for x in range(80) if edges[y][x]}
        self.succeed("square.png", "--sigma", "4")
        self.assertEqual(marked_pixels(), {(y, x) for x, y in marked_pixels()})
        self.succeed("square.png")
        marked = marked_pixels()
        # Both pixels beside a step have the same gradient; the first in scan order stays.
        for i in range(24, 56):
            self.assertEqual([19, 59], [x for x in range(80) if (x, i) in marked])
            self.assertEqual([19, 59], [y for y in range(80) if (i, y) in marked])
        self.assertTrue(all(min(abs(x - 19), abs(x - 59), abs(y - 19), abs(y - 59)) <= 1 for x, y in marked))

    def test_same_result_on_every_way(self):
        thresholds = ("--low", "8", "--high", "25")
        self.succeed("discs.v1.png", "-o", "base", *thresholds)
        base = self.bytes_of("base", "discs.v1-edges.png")
        result = self.run_edges("discs.v1.png", "--instruction-set", "none")
        sets = re.search(r"only for (.*?) \(", result.stderr).group(1).split(", ")
        self.assertIn("generic", sets)
        ways = [("--policy", "labels"), ("--policy", "iterative"), ("--threads", "1"), ("--threads", "3")]
        ways += [("--instruction-set", name) for name in sets]
        for way in ways:
            with self.subTest(way=way):
                report = self.succeed("discs.v1.png", "-o", "other", *thresholds, *way)
                self.assertEqual(base, self.bytes_of("other", "discs.v1-edges.png"))
                expected = {"--policy": "policy      " + way[1], "--threads": "threads     " + way[1],
                            "--instruction-set": "edges " + way[1] + "\n"}
                self.assertIn(expected[way[0]], report)

    def test_thresholds_and_sigma(self):
        report = self.succeed("discs.v1.png", "-o", "base")
        low, high = re.search(r"low ([\d.]+), high ([\d.]+) .*\(from the picture\)", report).groups()
        self.assertAlmostEqual(0.4 * float(high), float(low), delta=0.01 * float(high))
        base = self.bytes_of("base", "discs.v1-edges.png")
        self.succeed("discs.v1.png", "-o", "again", "--low", low, "--high", high)
        self.assertEqual(base, self.bytes_of("again", "discs.v1-edges.png"))
        # A power of two scales gradients without rounding, whatever the type of the samples.
        write_png(self.path("deep.png"), [[256 * grey for grey in row] for row in self.picture], 16)
        self.succeed("deep.png", "--low", str(256 * float(low)), "--high", str(256 * float(high)))
        self.assertEqual(base, self.bytes_of("deep-edges.png"))

        def count(*options):
            return int(re.search(r"\nedges +(\d+) of", self.succeed("discs.v1.png", *options)).group(1))
        automatic = count()
        self.assertLess(count("--high", str(2 * float(high))), automatic)
        self.assertGreater(count("--low", str(0.2 * float(low))), automatic)
        self.assertLess(count("--sigma", "3"), automatic)
        self.assertEqual(0, count("--high", "1e9"))
        write_png(self.path("flat.png"), [[200] * 40] * 30)
        self.assertIn("\nedges       0 of 1200 pixels (0 %)", self.succeed("flat.png"))

    def test_quiet_and_folders(self):
        self.assertEqual("", self.succeed("discs.v1.png", "--quiet", "-o", "new/folders/"))
        self.assertEqual(["discs.v1-edges.png", "discs.v1-overlay.png"],
                         sorted(os.listdir(self.path("new", "folders"))))
        self.assertIn("--sigma", self.succeed("--help"))

    def test_wrong_command_lines(self):
        for option, values in {"--sigma": ["-1", "nan", "0", "inf", "abc"], "--low": ["-1", "nan", "-inf", ""],
                               "--high": ["-0.5", "nan", "12x"], "--threads": ["0", "-1", "1.5", "2000"],
                               "--policy": ["fast"], "--instruction-set": ["mmx", "AVX2"]}.items():
            for value in values:
                self.refuse(2, [option, value], "discs.v1.png", option + "=" + value if value[:1] == "-" else option,
                            *([] if value[:1] == "-" else [value]), "-o", "new")
        self.refuse(2, ["--low", "20", "--high", "10"], "discs.v1.png", "--low", "20", "--high", "10")
        self.refuse(2, ["PICTURE"])
        self.refuse(2, ["--speed"], "discs.v1.png", "--speed")
        # A machine without the set has to be told from one with it.
        self.refuse(2, ["'avx2'", "only for generic, sse2 "], "discs.v1.png", "--instruction-set", "avx2",
                    ORVIK_MAX_INSTRUCTION_SET="sse2")

    def test_failures_leave_nothing(self):
        with open(self.path("text.png"), "w") as file:
            file.write("no picture")
        with open(self.path("cut.png"), "wb") as file:
            file.write(self.bytes_of("discs.v1.png")[:-600])
        self.refuse(1, ["'missing.png'", "No such file"], "missing.png", "-o", "new")
        self.refuse(1, ["'text.png'"], "text.png", "-o", "new")
        self.refuse(1, ["'cut.png'"], "cut.png", "-o", "new")
        self.refuse(1, ["'.'", "directory"], ".", "-o", "new")
        self.refuse(1, ["'text.png'", "Not a directory"], "discs.v1.png", "-o", "text.png")
        # Components that are too many for labels are a failure of the library's, in the midst of the work.
        numbers = random.Random(1)
        write_png(self.path("noise.png"), [list(numbers.randbytes(1500)) for _ in range(1500)])
        many = ["noise.png", "--sigma", "0.4", "--low", "0", "--high", "1", "-o"]
        self.refuse(1, ["65535", "iterative"], *many, "new", "--policy", "labels")
        self.succeed(*many, "fine", "--policy", "iterative")
        # The second file can't be written: the first one goes away again.
        os.makedirs(self.path("taken", "discs.v1-overlay.png"))
        self.refuse(1, ["discs.v1-overlay.png"], "discs.v1.png", "-o", "taken")

    def test_progress_on_terminals_only(self):
        write_png(self.path("tall.png"), [[(x * y) % 251 for x in range(300)] for y in range(8000)])
        slow = ["tall.png", "--sigma", "150", "--threads", "1", "--instruction-set", "generic"]  # some seconds

        ours, theirs = pty.openpty()
        status = subprocess.run([EDGES, *slow], cwd=self.folder, stdout=subprocess.DEVNULL, stderr=theirs).returncode
        os.write(theirs, b"end")  # a terminal has no end of its own while it is open
        text = ""
        while not text.endswith("end"):
            text += os.read(ours, 1000).decode()
        os.close(ours)
        os.close(theirs)
        self.assertEqual(0, status)
        # A share is shown and wiped away again.
        self.assertRegex(text, r"\rgradient +\d\d %.*\r +\rend\Z")
        self.succeed(*slow)  # checks that stderr, no terminal now, stays empty


if __name__ == "__main__":
    EDGES = os.path.abspath(sys.argv.pop(1))
    unittest.main()
