#!/usr/bin/env python3
"""Runs the programs that list what they find as a user does: ListingProgramsTest.py PATHS_OF EXTREMA CORNERS LINES CIRCLES."""

import csv
import json
import math
import os
import struct
import sys
import unittest

from programs import ProgramTestCase, read_png, write_nifti, write_png


def read_csv(path, names):
    """Rows of numbers below the names of the columns."""
    with open(path, newline="") as file:
        rows = list(csv.reader(file))
    assert rows[0] == names, rows[0]
    return [tuple(float(number) for number in row) for row in rows[1:]]


class ListingProgram:
    """What the programs that list what they find do in the same way; `what` is in the names of their files."""

    what = None
    columns = None
    number = "--distance"

    def list_of(self, *options, folder="."):
        self.succeed("discs.v1.png", "-o", folder, *options)
        return read_csv(self.path(folder, "discs.v1-%s.csv" % self.what), self.columns)

    def marks(self, x, y, listed):
        """Whether the overlay marks a pixel; None where it may."""
        raise NotImplementedError

    def test_files(self):
        listed = self.list_of("--max", "20")
        self.assertEqual([row[-1] for row in listed], sorted((row[-1] for row in listed), reverse=True))
        report = self.succeed("discs.v1.png", "--max", "20", "--format", "json")
        self.assertIn("%-11s %d listed, at most 20\n" % (self.what, len(listed)), report)
        self.assertRegex(report, r"time +read [\d.]+ ms, (\w+ [\d.]+ ms, )*%s [\d.]+ ms, write [\d.]+ ms" % self.what)
        with open(self.path("discs.v1-%s.json" % self.what)) as file:
            self.assertEqual([dict(zip(self.columns, row)) for row in listed], json.load(file))
        for y, (row, given) in enumerate(zip(read_png(self.path("discs.v1-%s-overlay.png" % self.what)), self.picture)):
            for x, (shown, grey) in enumerate(zip(row, given)):
                marked = self.marks(x, y, listed)
                self.assertIn(shown, [(255, 0, 0)] * (marked is not False) + [(grey,) * 3] * (marked is not True), (x, y))
        self.assertEqual([], self.list_of("--max", "0"))

    def test_same_list_on_every_way(self):
        base = self.list_of("--threads", "1", "--instruction-set", "generic")
        for way in (("--threads", "3"), ("--instruction-set", "sse2"), ()):
            self.assertEqual(base, self.list_of(*way, folder="other"), way)

    def test_failures_leave_nothing(self):
        self.refuse_taken_names("discs.v1-%s.csv" % self.what, "discs.v1-%s-overlay.png" % self.what)
        self.refuse(1, ["'missing.png'"], "missing.png", "-o", "new")
        self.refuse(2, ["--format", "xml"], "discs.v1.png", "--format", "xml")
        for value in ("-1", "1.5", "x", "99999999999999999999"):
            for option in ("--max", self.number):
                self.refuse(2, [option, value], "discs.v1.png", option, value)


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


    def voxels_of(self, *options):
        """What is listed of six slices of ten columns and eight lines."""
        peaks = {(2, 2, 1): 90, (3, 2, 3): 80, (7, 6, 5): 70, (7, 6, 4): 60}
        slices = [[[peaks.get((x, y, z), 10) for x in range(10)] for y in range(8)] for z in range(6)]
        write_nifti(self.path("peaks.nii.gz"), slices, (0.5, 0.5, 2))
        self.report = self.succeed("peaks.nii.gz", "--threshold", "50", *options)
        return read_csv(self.path("peaks-extrema.csv"), ["x", "y", "z", "value"])

    def test_lists_voxels_of_a_volume(self):
        self.assertEqual([(2, 2, 1, 90), (7, 6, 5, 70)], self.voxels_of("--distance", "2"))
        for told in ("peaks.nii.gz, 10 x 8 x 6, 8 bit unsigned\nvoxel       0.5 x 0.5 x 2 mm\n", "2 x 2 x 2 voxels", "2 listed, at most"):
            self.assertIn(told, self.report)
        self.assertEqual([(2, 2, 1, 90), (3, 2, 3, 80), (7, 6, 5, 70)],
                         self.voxels_of("--distance", "2", "--distance-z", "1"))
        # Side by side, with z upwards where it is seen.
        shown = read_png(self.path("peaks-extrema-projections.png"))
        self.assertEqual((8, 10 + 4 + 10 + 4 + 8), (len(shown), len(shown[0])))
        for x, y, z in ((2, 2, 1), (3, 2, 3), (7, 6, 5)):
            for column, row in ((x, y), (14 + x, 5 - z), (28 + y, 5 - z)):
                self.assertEqual((255, 0, 0), shown[row][column])
        cuts = read_png(self.path("peaks-extrema-slices.png"))  # at x 5, y 4, z 3
        crosses = {(x, 2) for x in range(7)} | {(3, y) for y in range(6)} | {(2, 2), (7, 6)}
        self.assertEqual(crosses, {(x, y) for x in range(10) for y in range(8) if cuts[y][x] == (255, 0, 0)})
        self.assertEqual((10, 10, 10), cuts[0][0])
        self.assertEqual((0, 0, 0), cuts[0][10])

    def test_takes_slices_for_pictures_when_told(self):
        self.assertEqual([(2, 2, 1, 90), (3, 2, 3, 80), (7, 6, 4, 60), (7, 6, 5, 70)],
                         self.voxels_of("--distance", "2", "--slice-by-slice", "--max", "1"))
        self.assertIn("4 listed, at most 1 per slice\n", self.report)
        self.refuse(2, ["--distance-z"], "peaks.nii.gz", "--slice-by-slice", "--distance-z", "1")
        self.refuse(2, ["--distance-z"], "discs.v1.png", "--distance-z", "1")

    def test_reads_raw_samples(self):
        with open(self.path("raw.bin"), "wb") as file:
            file.write(struct.pack(">24h", *(300 if i == 17 else i for i in range(24))))
        options = ("raw.bin", "--raw-type", "int16", "--raw-big-endian", "--raw-size")
        self.succeed(*options, "4x3x2", "--max", "1")
        self.assertEqual([(1, 1, 1, 300)], read_csv(self.path("raw-extrema.csv"), ["x", "y", "z", "value"]))
        self.refuse(1, ["'raw.bin'", "4 x 3 x 3", "72 bytes", "has 48"], *options, "4x3x3")
        for size in ("4x3", "4x3x0", "4x3x2x1", "-4x3x2", "4X3X2", "x", "9999999999x1x1"):
            self.refuse(2, ["--raw-size", size], "raw.bin", "--raw-size=" + size)
        self.refuse(2, ["--raw-type"], "raw.bin", "--raw-type", "int16")
        self.refuse(2, ["--raw-type", "int64"], "raw.bin", "--raw-size", "4x3x2", "--raw-type", "int64")


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


    def test_lists_the_corners_of_a_box(self):
        slices = [[[200 if all(10 <= i < 30 for i in (x, y, z)) else 10 for x in range(40)] for y in range(40)]
                  for z in range(40)]
        write_nifti(self.path("box.nii"), slices)
        for measure in ("harris", "eigenvalue"):
            report = self.succeed("box.nii", "--measure", measure, "--max", "8")
            found = sorted(row[:3] for row in read_csv(self.path("box-corners.csv"), ["x", "y", "z", "value"]))
            low = found[0][0]
            self.assertLess(abs(low - 9.5), 2)
            self.assertEqual([(x, y, z) for x in (low, 39 - low) for y in (low, 39 - low) for z in (low, 39 - low)], found)
        self.assertIn("box.nii, 40 x 40 x 40, 8 bit unsigned\n", report)
        self.refuse(2, ["--k", "0.04", "1/27"], "box.nii", "--k", "0.04")
        # A slice through the box is the picture of a square.
        self.succeed("box.nii", "--slice-by-slice", "--max", "4")
        corners = read_csv(self.path("box-corners.csv"), ["x", "y", "z", "value"])
        self.assertEqual(4, len({row[:2] for row in corners if row[2] in (10, 20, 29)}))


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

    def test_gradient_tells_where_it_is_brighter(self):
        bright = (90, 60)
        inward = lambda rho, theta: bright[0] * math.cos(theta) + bright[1] * math.sin(theta) > rho
        expected = [side if inward(*side) else (-side[0], side[1] - math.pi) for side in self.sides]
        options = ("--gradient", "--low", "5", "--tolerance", "0.2")
        for half, angles in ((False, ()), (True, ("--theta-min", "0", "--theta-max", str(math.pi), "--angles", "180"))):
            lines, sides = self.list_of(*options, *angles), [side for side in expected if side[1] >= 0 or not half]
            self.assertEqual(len(sides), len(lines))
            for rho, theta in sides:
                self.assertTrue(any(abs(line[0] - rho) < 1.5 and abs(line[1] - theta) < 0.02 for line in lines), (rho, theta, lines))
        self.assertNotEqual(self.list_of(*options), self.list_of("--gradient", "--low", "5", "--tolerance", "0.02"))

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
        self.refuse(2, ["--theta-min", "--theta-max"], "discs.v1.png", "--theta-min", "3", "--theta-max", "1")
        self.refuse(2, ["--tolerance", "--gradient"], "discs.v1.png", "--tolerance", "0.2")
        self.refuse(2, ["--tolerance", "4"], "discs.v1.png", "--gradient", "--tolerance", "4")
        many = ("--rho-step", "0.01", "--angles", "36000", "--distance", "10000")  # 5 GB of votes
        self.refuse(2, many, "discs.v1.png", *many)


def shade(x, y):
    """A bright disc and a dark one on grey."""
    return 220 if math.hypot(x - 40, y - 50) < 20 else 20 if math.hypot(x - 110, y - 60) < 30 else 120


class CirclesProgramTest(ListingProgram, ProgramTestCase):
    what = "circles"
    columns = ["x", "y", "radius", "value"]
    number = "--min-radius"
    picture = [[shade(x, y) for x in range(160)] for y in range(110)]

    def marks(self, x, y, listed):
        distance = min(abs(math.hypot(x - cx, y - cy) - radius) for cx, cy, radius, _ in listed)
        isCross = any((x == cx and abs(y - cy) <= 2) or (y == cy and abs(x - cx) <= 2) for cx, cy, _, _ in listed)
        return isCross or distance < 0.35 or (None if distance <= 0.8 else False)

    def test_lists_the_circles_that_were_asked_for(self):
        options = ("--min-radius", "10", "--max-radius", "40", "--ratio", "0.4")
        bright, dark = (40, 50), (110, 60)
        centres = lambda *more: sorted((x, y) for x, y, _, _ in self.list_of(*options, *more))
        self.assertEqual([bright, dark], centres())
        self.assertEqual([bright], centres("--kind", "bright"))
        self.assertEqual([dark], centres("--kind", "dark"))
        self.assertNotEqual(self.list_of(*options), self.list_of(*options, "--points", "40"))
        self.assertEqual([bright, dark], centres("--method", "phase", "--angle", "0.3"))
        for x, y, radius, value in self.list_of(*options):
            self.assertAlmostEqual(20 if (x, y) == bright else 30, radius, delta=1.5)
        strongest = self.list_of(*options)[0]
        self.assertEqual([strongest], self.list_of(*options, "--threshold", str(strongest[3])))
        self.assertIn("(40, 50), radius", self.succeed("discs.v1.png", *options))

    def test_wrong_command_lines(self):
        for option, value in (("--min-radius", "0"), ("--max-radius", "1.5"), ("--angle", "nan"), ("--ratio", "2"), ("--kind", "grey")):
            self.refuse(2, [option, value], "discs.v1.png", option, value)
        self.refuse(2, ["--min-radius", "60", "--max-radius", "50"], "discs.v1.png", "--min-radius", "60")
        self.refuse(2, ["--min-radius", "56", "55"], "discs.v1.png", "--min-radius", "56", "--max-radius", "99")
        self.refuse(2, ["--method", "55"], "discs.v1.png", "--method", "phase", "--min-radius", "55", "--max-radius", "99")


if __name__ == "__main__":
    ExtremaProgramTest.program, CornersProgramTest.program, LinesProgramTest.program, CirclesProgramTest.program = map(
        os.path.abspath, sys.argv[1:5])
    del sys.argv[1:5]
    unittest.main()
