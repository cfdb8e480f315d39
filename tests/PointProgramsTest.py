#!/usr/bin/env python3
"""Runs the programs that list points as a user does: PointProgramsTest.py PATH_OF_EXTREMA PATH_OF_CORNERS."""

import json
import os
import sys
import unittest

from programs import ProgramTestCase, read_csv, read_png, write_png


class PointProgram:
    """What both programs do in the same way; `what` is in the names of their files."""

    what = None

    def list_of(self, *options, folder="."):
        self.succeed("discs.v1.png", "-o", folder, *options)
        return read_csv(self.path(folder, "discs.v1-%s.csv" % self.what), ["x", "y", "value"])

    def test_files(self):
        points = self.list_of("--max", "20")
        self.assertEqual(20, len(points))
        self.assertEqual([point[2] for point in points], sorted((point[2] for point in points), reverse=True))
        report = self.succeed("discs.v1.png", "--max", "20", "--format", "json")
        self.assertIn("%-11s 20 listed, at most 20\n" % self.what, report)
        with open(self.path("discs.v1-%s.json" % self.what)) as file:
            self.assertEqual(points, [(point["x"], point["y"], point["value"]) for point in json.load(file)])
        overlay = read_png(self.path("discs.v1-%s-overlay.png" % self.what))
        crosses = set()
        for x, y, _ in points:
            crosses |= {(x + step, y) for step in range(-3, 4)} | {(x, y + step) for step in range(-3, 4)}
        for y, (shown, given) in enumerate(zip(overlay, self.picture)):
            self.assertEqual([(255, 0, 0) if (x, y) in crosses else (grey,) * 3 for x, grey in enumerate(given)], shown)
        self.succeed("discs.v1.png", "--max", "0")
        self.assertEqual([], read_csv(self.path("discs.v1-%s.csv" % self.what), ["x", "y", "value"]))

    def test_same_list_on_every_way(self):
        base = self.list_of("--threads", "1", "--instruction-set", "generic")
        for way in (("--threads", "3"), ("--instruction-set", "sse2"), ()):
            self.assertEqual(base, self.list_of(*way, folder="other"), way)

    def test_failures_leave_nothing(self):
        os.makedirs(self.path("taken", "discs.v1-%s-overlay.png" % self.what))
        self.refuse(1, ["overlay.png", "directory"], "discs.v1.png", "-o", "taken")
        self.refuse(1, ["'missing.png'"], "missing.png")
        self.refuse(2, ["--format", "xml"], "discs.v1.png", "--format", "xml")
        for value in ("-1", "1.5", "x", "99999999999999999999"):
            self.refuse(2, ["--max", value], "discs.v1.png", "--max", value)
            self.refuse(2, ["--distance", value], "discs.v1.png", "--distance", value)


class ExtremaProgramTest(PointProgram, ProgramTestCase):
    what = "extrema"

    def test_lists_what_was_asked_for(self):
        write_png(self.path("discs.v1.png"), [[10, 10, 10, 10, 10, 10], [10, 90, 10, 10, 70, 70], [10, 10, 10, 5, 10, 10]])
        self.assertEqual([(1, 1, 90), (4, 1, 70)], self.list_of("--distance", "1", "--threshold", "50"))
        self.assertEqual([(1, 1, 90)], self.list_of("--distance", "4"))
        self.assertEqual([(1, 1, 90)], self.list_of("--distance", "1", "--kind", "strict-maxima"))
        self.assertEqual([(3, 2, 5)], self.list_of("--distance", "2", "--kind", "minima", "--threshold", "8"))


class CornersProgramTest(PointProgram, ProgramTestCase):
    what = "corners"

    def test_lists_the_corners_of_a_square(self):
        write_png(self.path("discs.v1.png"), [[200 if 20 <= x < 60 and 20 <= y < 60 else 10 for x in range(80)]
                                              for y in range(80)])
        for measure in ("harris", "eigenvalue"):
            corners = self.list_of("--measure", measure, "--max", "4")
            # Smoothing draws the maximum inwards, by the same on all sides.
            found = sorted((x, y) for x, y, _ in corners)
            near = found[0][0]
            self.assertEqual([(near, near), (near, 79 - near), (79 - near, near), (79 - near, 79 - near)], found)
            self.assertLess(abs(near - 19.5), 2)
        strongest = self.list_of("--max", "1")[0][2]
        self.assertEqual([], self.list_of("--threshold", str(1.01 * strongest)))
        self.assertLess(self.list_of("--max", "1", "--k", "0.1")[0][2], strongest)
        self.assertLess(self.list_of("--max", "1", "--sigma", "3")[0][2], strongest)


if __name__ == "__main__":
    ExtremaProgramTest.program = os.path.abspath(sys.argv.pop(1))
    CornersProgramTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
