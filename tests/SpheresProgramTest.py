#!/usr/bin/env python3
"""Runs the program spheres as a user does: SpheresProgramTest.py PATH_OF_SPHERES."""

import csv
import os
import sys
import unittest

from programs import ProgramTestCase, read_nifti, read_png, write_nifti

SIZES = (48, 34, 32)
BALLS = ((14, 16, 15, 8), (34, 18, 16, 10))  # x, y, z, radius


class SpheresProgramTest(ProgramTestCase):
    """Two bright balls on a dark ground, in balls.nii.gz."""

    def setUp(self):
        super().setUp()
        inside = lambda *at: any(sum((a - b) ** 2 for a, b in zip(at, ball)) < ball[3] ** 2 for ball in BALLS)
        write_nifti(self.path("balls.nii.gz"), [[[150 if inside(x, y, z) else 10 for x in range(SIZES[0])]
                                                 for y in range(SIZES[1])] for z in range(SIZES[2])], (0.5, 0.5, 0.5))

    def rows(self, *folder):
        with open(self.path(*folder, "balls-spheres.csv"), newline="", encoding="utf-8") as file:
            return [tuple(float(row[key]) for key in ("x", "y", "z", "radius")) for row in csv.DictReader(file)]

    def test_lists_labels_and_shows_balls(self):
        report = self.succeed("balls.nii.gz", "--min-radius", "5", "--max-radius", "14", "--kind", "bright")
        rows = self.rows()
        self.assertEqual(2, len(rows))
        for ball, row in zip(BALLS, sorted(rows)):
            self.assertTrue(all(abs(a - b) <= 1 for a, b in zip(ball, row)), (ball, row))
        labels, header = read_nifti(self.path("balls-spheres-labels.nii.gz"))
        self.assertEqual([rows.index(row) + 1 for row in sorted(rows)],
                         [labels[z][y][x] for x, y, z, _ in BALLS])
        for i, (x, y, z, radius) in enumerate(rows):
            self.assertEqual([i + 1, 0], [labels[int(z)][int(y)][int(x + step)] for step in (radius, radius + 1)])
        cuts = read_png(self.path("balls-spheres-slices.png"))  # at x 24, y 17, z 16
        x, y, z, radius = max(rows, key=lambda row: row[3])
        self.assertEqual(16, z)
        self.assertEqual((255, 0, 0), cuts[int(y)][int(x + radius)])
        self.assertNotEqual((255, 0, 0), cuts[int(y)][int(x)])
        self.assertTrue(os.path.exists(self.path("balls-spheres-projections.png")))
        self.assertIn("radii       5 to 14 voxels, bright\n", report)
        self.assertIn("spheres     2 listed, at most 1000\n", report)

    def test_same_result_on_every_way(self):
        usual = ("balls.nii.gz", "--min-radius", "5", "--max-radius", "14")
        self.succeed(*usual, "-o", "base")
        for options in (("--threads", "1"), ("--instruction-set", "generic"), ("--instruction-set", "sse2")):
            self.succeed(*usual, "-o", "other", *options)
            self.assertEqual(self.rows("base"), self.rows("other"), options)

    def test_failures_leave_nothing(self):
        self.refuse_taken_names("balls-spheres.csv", "balls-spheres-labels.nii.gz", "balls-spheres-slices.png",
                                "balls-spheres-projections.png", source="balls.nii.gz")
        self.refuse(1, ["'discs.v1.png'", "single slice", "circles"], "discs.v1.png")
        self.refuse(2, ["--min-radius", "9 is above --max-radius, 8"], "balls.nii.gz", "--min-radius", "9", "--max-radius", "8")
        self.refuse(2, ["--min-radius", "17 is above half of the volume, 16"], "balls.nii.gz", "--min-radius", "17")


if __name__ == "__main__":
    SpheresProgramTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
