#!/usr/bin/env python3
"""Runs the program lines as a user does: LinesProgramTest.py PATH_OF_LINES."""

import json
import math
import os
import sys
import unittest

from programs import ProgramTestCase, read_csv, read_png, write_png


class LinesProgramTest(ProgramTestCase):
    # A bright parallelogram: two horizontal sides and two slanted ones.
    picture = [[200 if 30 <= y < 90 and 20 <= x - y / 2 < 100 else 10 for x in range(170)] for y in range(120)]
    sides = [(29.5, math.pi / 2), (89.5, math.pi / 2)]
    sides += [(offset * math.cos(math.atan(0.5)), math.pi - math.atan(0.5)) for offset in (-20, -100)]

    def list_of(self, *options, folder="."):
        self.succeed("discs.v1.png", "-o", folder, *options)
        return read_csv(self.path(folder, "discs.v1-lines.csv"), ["rho", "theta", "votes"])

    def test_lists_the_sides_of_a_parallelogram(self):
        lines = self.list_of("--max", "4", "--threshold", "0.3")
        self.assertEqual(4, len(lines))
        self.assertEqual([line[2] for line in lines], sorted((line[2] for line in lines), reverse=True))
        for rho, theta in self.sides:
            near = [line for line in lines if abs(line[0] - rho) < 2 and abs(line[1] - theta) < math.radians(1.5)]
            self.assertEqual(1, len(near), (rho, theta, lines))
        self.assertEqual(lines[:2], self.list_of("--max", "2", "--threshold", "0.3"))
        self.assertEqual([line for line in lines if line[2] >= 0.9 * lines[0][2]], self.list_of("--threshold", "0.9"))
        # Twice as many angles, half as wide bins: the same sides.
        fine = self.list_of("--angles", "360", "--rho-step", "0.5", "--distance", "20", "--max", "4", "--threshold", "0.3")
        for rho, theta in self.sides:
            self.assertTrue(any(abs(line[0] - rho) < 1.5 and abs(line[1] - theta) < math.radians(1) for line in fine))

    def test_writes_list_and_overlay(self):
        lines = self.list_of("--max", "4", "--threshold", "0.3")
        report = self.succeed("discs.v1.png", "--max", "4", "--threshold", "0.3", "--format", "json")
        self.assertIn("lines       4 listed, at most 4\n", report)
        self.assertRegex(report, r"time +read [\d.]+ ms, gradient .*, edges [\d.]+ ms, lines [\d.]+ ms, write")
        with open(self.path("discs.v1-lines.json")) as file:
            self.assertEqual(lines, [(line["rho"], line["theta"], line["votes"]) for line in json.load(file)])
        for y, row in enumerate(read_png(self.path("discs.v1-lines-overlay.png"))):
            for x, shown in enumerate(row):
                distance = min(abs(x * math.cos(theta) + y * math.sin(theta) - rho) for rho, theta, _ in lines)
                if shown == (255, 0, 0):
                    self.assertLessEqual(distance, 0.5 + 1e-6, (x, y))
                else:
                    self.assertEqual((self.picture[y][x],) * 3, shown, (x, y))
                    self.assertGreaterEqual(distance, 0.35, (x, y))
        self.assertEqual([], self.list_of("--max", "0"))

    def test_same_list_on_every_way(self):
        base = self.list_of("--threads", "1", "--instruction-set", "generic")
        for way in (("--threads", "3"), ("--instruction-set", "sse2"), ()):
            self.assertEqual(base, self.list_of(*way, folder="other"), way)

    def test_failures_leave_nothing(self):
        os.makedirs(self.path("taken", "discs.v1-lines-overlay.png"))
        self.refuse(1, ["overlay.png", "directory"], "discs.v1.png", "-o", "taken")
        self.refuse(1, ["'missing.png'"], "missing.png")
        for option, value in (("--threshold", "2"), ("--threshold", "nan"), ("--angles", "0"), ("--angles", "1.5"),
                              ("--rho-step", "0"), ("--distance", "-1"), ("--max", "-1"), ("--format", "xml")):
            self.refuse(2, [option, value], "discs.v1.png", option, value)
        self.refuse(2, ["--low", "--high"], "discs.v1.png", "--low", "9", "--high", "3")


if __name__ == "__main__":
    LinesProgramTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
