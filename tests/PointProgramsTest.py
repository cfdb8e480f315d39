#!/usr/bin/env python3
"""Runs the programs that list points as a user does: PointProgramsTest.py PATH_OF_EXTREMA PATH_OF_CORNERS."""

import os
import sys
import unittest

from programs import ListingProgram, ProgramTestCase, write_png


class PointProgram(ListingProgram):
    columns = ["x", "y", "value"]

    def marks(self, x, y, listed):
        return any((x == cx and abs(y - cy) <= 3) or (y == cy and abs(x - cx) <= 3) for cx, cy, _ in listed)


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
