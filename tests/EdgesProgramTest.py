#!/usr/bin/env python3
"""Runs the program edges as a user does: EdgesProgramTest.py PATH_OF_EDGES."""

import os
import pty
import re
import subprocess
import sys
import unittest

from programs import ProgramTestCase, read_png, write_png


class EdgesProgramTest(ProgramTestCase):
    def test_writes_edges_and_overlay(self):
        report = self.succeed("discs.v1.png")
        edges, overlay = read_png(self.path("discs.v1-edges.png")), read_png(self.path("discs.v1-overlay.png"))
        self.assertEqual([[(255, 0, 0) if edge == 255 else (grey,) * 3 for edge, grey in zip(*rows)]
                          for rows in zip(edges, self.picture)], overlay)
        number = sum(row.count(255) for row in edges)
        self.assertIn("150 x 130, 8 bit unsigned", report)
        self.assertIn("edges       %d of 19500 pixels (%.3g %%)" % (number, number / 195.0), report)
        self.assertRegex(report, r"time +read [\d.]+ ms, gradient [\d.]+ ms, .*edges [\d.]+ ms, write [\d.]+ ms")

    def test_finds_the_outline_of_a_square(self):
        write_png(self.path("square.png"), [[200 if 20 <= x < 60 and 20 <= y < 60 else 10 for x in range(80)]
                                            for y in range(80)])
        self.succeed("square.png")
        edges = read_png(self.path("square-edges.png"))
        marked = {(x, y) for y in range(80) for x in range(80) if edges[y][x]}
        # Both pixels beside a step have the same gradient; the first in scan order stays.
        for i in range(24, 56):
            self.assertEqual([19, 59], [x for x in range(80) if (x, i) in marked])
            self.assertEqual([19, 59], [y for y in range(80) if (i, y) in marked])
        self.assertTrue(all(min(abs(x - 19), abs(x - 59), abs(y - 19), abs(y - 59)) <= 1 for x, y in marked))

    def test_same_result_on_every_way(self):
        thresholds = ("--low", "8", "--high", "25")
        self.succeed("discs.v1.png", "-o", "base", *thresholds)
        base = self.bytes_of("base", "discs.v1-edges.png")
        result = self.run_program("discs.v1.png", "--instruction-set", "none")
        sets = re.search(r"only for (.*?) \(", result.stderr).group(1).split(", ")
        self.assertIn("generic", sets)
        ways = [("--policy", value, "policy      " + value) for value in ("labels", "iterative")]
        ways += [("--threads", value, "threads     " + value) for value in ("1", "3")]
        ways += [("--instruction-set", value, "edges " + value + "\n") for value in sets]
        for option, value, told in ways:
            self.assertIn(told, self.succeed("discs.v1.png", "-o", "other", *thresholds, option, value))
            self.assertEqual(base, self.bytes_of("other", "discs.v1-edges.png"), (option, value))

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
        # A machine without the set has to be told from one with it.
        self.refuse(2, ["'avx2'", "only for generic, sse2 "], "discs.v1.png", "--instruction-set", "avx2",
                    ORVIK_MAX_INSTRUCTION_SET="sse2")

    def test_failures_leave_nothing(self):
        with open(self.path("text.png"), "w") as file:
            file.write("no picture")
        self.refuse(1, ["'text.png'"], "text.png", "-o", "new")
        self.refuse(1, ["'text.png'", "Not a directory"], "discs.v1.png", "-o", "text.png")
        self.refuse_taken_names("discs.v1-edges.png", "discs.v1-overlay.png")
        # Known to be too long only where the second file gets its name.
        long = "n" * (255 - len("-edges.png"))
        write_png(self.path(long[:-4] + ".png"), self.picture)
        self.succeed(long[:-4] + ".png", "-o", "fine")
        write_png(self.path(long + ".png"), self.picture)
        write_png(self.path(long + "-edges.png"), [[1]])
        self.refuse(1, [long + "-overlay.png", "too long"], long + ".png")

    def test_progress_on_terminals_only(self):
        write_png(self.path("tall.png"), [[(x * y) % 251 for x in range(300)] for y in range(8000)])
        slow = ["tall.png", "--sigma", "150", "--threads", "1", "--instruction-set", "generic"]  # some seconds

        try:
            ours, theirs = pty.openpty()
        except OSError as error:  # a container without terminals
            self.skipTest(str(error))
        status = subprocess.run([self.program, *slow], cwd=self.folder, stdout=subprocess.DEVNULL, stderr=theirs).returncode
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
    EdgesProgramTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
