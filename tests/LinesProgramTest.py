#!/usr/bin/env python3
"""Runs the program lines as a user does: LinesProgramTest.py PATH_OF_LINES."""

import math
import os
import sys
import unittest

from programs import ListingProgram, ProgramTestCase, write_png


class LinesProgramTest(ListingProgram, ProgramTestCase):
    what = "lines"
    columns = ["rho", "theta", "votes"]
    # A bright parallelogram: two horizontal sides and two slanted ones.
    picture = [[200 if 30 <= y < 90 and 20 <= x - y / 2 < 100 else 10 for x in range(170)] for y in range(120)]
    sides = [(29.5, math.pi / 2), (89.5, math.pi / 2)]
    sides += [(offset * math.cos(math.atan(0.5)), math.pi - math.atan(0.5)) for offset in (-20, -100)]

    def marks(self, x, y, listed):
        distance = min(abs(x * math.cos(theta) + y * math.sin(theta) - rho) for rho, theta, _ in listed)
        return distance < 0.35 or (None if distance <= 0.5 + 1e-6 else False)

    def assert_sides(self, lines, *options):
        self.assertEqual(len(self.sides), len(lines), (options, lines))
        for rho, theta in self.sides:
            self.assertTrue(any(abs(line[0] - rho) < 1.5 and abs(line[1] - theta) < math.radians(1) for line in lines),
                            (rho, theta, options, lines))

    def test_lists_the_sides_of_a_parallelogram(self):
        lines = self.list_of()
        self.assert_sides(lines)
        self.assertIn("lines       4 listed, at most 50\n", self.succeed("discs.v1.png"))
        self.assertEqual(lines[:2], self.list_of("--max", "2"))
        self.assertEqual([line for line in lines if line[2] >= 0.9 * lines[0][2]], self.list_of("--threshold", "0.9"))
        # Finer bins share out the votes, and a line takes up more of them.
        fine = ("--angles", "360", "--rho-step", "0.5", "--distance", "20", "--threshold", "0.3")
        self.assert_sides(self.list_of(*fine), *fine)
        # Bins are counted from the centre.
        for rho, theta, _ in self.list_of("--rho-step", "7"):
            bins = (rho - 85 * math.cos(theta) - 60 * math.sin(theta)) / 7
            self.assertAlmostEqual(round(bins), bins)

    def test_lists_the_strongest_line_at_any_distance(self):
        strongest = self.list_of("--max", "1")
        self.assertEqual(strongest, self.list_of("--distance", "179"))
        self.assertEqual(strongest, self.list_of("--angles", "12", "--distance", "11", "--max", "1"))
        self.assertEqual({0}, {theta for _, theta, _ in self.list_of("--angles", "1", "--distance", "0")})
        # As far as half a turn away a line would meet itself.
        for options in (("--distance", "180"), ("--angles", "10"), ("--angles", "1", "--distance", "1")):
            self.refuse(2, ["--distance", "--angles", options[1]], "discs.v1.png", *options)

    def test_lists_nothing_where_nothing_is(self):
        write_png(self.path("discs.v1.png"), [[200] * 40] * 30)
        self.assertEqual([], self.list_of("--threshold", "0"))

    def test_wrong_command_lines(self):
        for option, value in (("--threshold", "2"), ("--threshold", "nan"), ("--angles", "0"), ("--angles", "1.5"), ("--rho-step", "0")):
            self.refuse(2, [option, value], "discs.v1.png", option, value)
        self.refuse(2, ["--low", "--high"], "discs.v1.png", "--low", "9", "--high", "3")
        many = ("--rho-step", "0.01", "--angles", "36000", "--distance", "10000")  # 5 GB of votes
        self.refuse(2, many, "discs.v1.png", *many)


if __name__ == "__main__":
    LinesProgramTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
