#!/usr/bin/env python3
"""Runs the program surfaces as a user does: SurfacesProgramTest.py PATH_OF_SURFACES."""

import os
import re
import signal
import struct
import subprocess
import sys
import time
import unittest

from programs import ProgramTestCase, read_nifti, read_png, write_nifti

SIZES = (30, 32, 28)
BOX = ((8, 22), (9, 23), (6, 20))  # first and last but one along x, y, z


class SurfacesProgramTest(ProgramTestCase):
    """A bright box on a dark ground, in box.nii.gz."""

    def setUp(self):
        super().setUp()
        inside = lambda *at: all(first <= i < end for i, (first, end) in zip(at, BOX))
        write_nifti(self.path("box.nii.gz"), [[[200 if inside(x, y, z) else 10 for x in range(SIZES[0])]
                                               for y in range(SIZES[1])] for z in range(SIZES[2])], (0.5, 0.75, 2))

    def test_finds_the_surface_of_a_box(self):
        report = self.succeed("box.nii.gz")
        slices, header = read_nifti(self.path("box-surfaces.nii.gz"))
        self.assertEqual({0, 255}, {value for rows in slices for row in rows for value in row})
        marked = {(x, y, z) for z in range(SIZES[2]) for y in range(SIZES[1]) for x in range(SIZES[0]) if slices[z][y][x]}
        # Both voxels beside a step have the same gradient, far from other sides; the first in scan order stays.
        middle = [(first + end) // 2 for first, end in BOX]
        for axis, (first, end) in enumerate(BOX):
            for at in (0, -2, 2):
                line = [[i if other == axis else middle[other] + at for other in range(3)] for i in range(SIZES[axis])]
                self.assertEqual([first - 1, end - 1], [point[axis] for point in line if tuple(point) in marked])
        near = lambda i, first, end: min(abs(i - first + 1), abs(i - end + 1)) <= 1
        self.assertTrue(all(any(near(i, *range) for i, range in zip(point, BOX)) for point in marked))
        self.assertEqual(struct.pack("<3f", 0.5, 0.75, 2), header[80:92])
        self.assertIn("box.nii.gz, 30 x 32 x 28, 8 bit unsigned\nvoxel       0.5 x 0.75 x 2 mm\n", report)
        self.assertIn("surfaces    %d of 26880 voxels (%.3g %%)\n" % (len(marked), len(marked) / 268.8), report)

    def test_shows_cuts_and_steepness(self):
        self.succeed("box.nii.gz", "--sigma-z", "2")
        slices, _ = read_nifti(self.path("box-surfaces.nii.gz"))
        cuts = read_png(self.path("box-surfaces-slices.png"))  # at x 15, y 16, z 14, with z upwards
        self.assertEqual((32, 30 + 4 + 30 + 4 + 32), (len(cuts), len(cuts[0])))
        red = lambda column, row: cuts[row][column] == (255, 0, 0)
        self.assertTrue(all(red(x, y) == (slices[14][y][x] == 255) for x in range(30) for y in range(32)))
        self.assertTrue(all(red(34 + x, 27 - z) == (slices[z][16][x] == 255) for x in range(30) for z in range(28)))
        self.assertTrue(all(red(68 + y, 27 - z) == (slices[z][y][15] == 255) for y in range(32) for z in range(28)))
        steep = read_png(self.path("box-surfaces-projections.png"))
        # Along z one sees the top of the box, smoothed twice as far as its sides.
        self.assertTrue(0 < steep[16][15][0] < max(steep[16][7:9])[0])
        self.assertEqual((0, 0, 0), steep[1][1])

    def test_same_result_on_every_way(self):
        thresholds = re.search(r"low ([\d.]+), high ([\d.]+) .*\(from the volume\)", self.succeed("box.nii.gz", "-o", "base"))
        base = read_nifti(self.path("base", "box-surfaces.nii.gz"))
        for options in (("--threads", "1"), ("--instruction-set", "generic"), ("--instruction-set", "sse2"),
                        ("--low", thresholds.group(1), "--high", thresholds.group(2))):
            self.succeed("box.nii.gz", "-o", "other", *options)
            self.assertEqual(base, read_nifti(self.path("other", "box-surfaces.nii.gz")), options)

    def test_formats(self):
        self.succeed("box.nii.gz")
        expected = read_nifti(self.path("box-surfaces.nii.gz"))
        self.succeed("box.nii.gz", "--format", "nii")
        self.assertEqual(expected, read_nifti(self.path("box-surfaces.nii")))
        # Surfaces of surfaces: what was written in one format is read from it and written in another.
        self.succeed("box.nii.gz", "--format", "tif")
        self.assertIn("30 x 32 x 28, 8 bit unsigned\nvoxel       0.5 x 0.75 x 2 mm\n", self.succeed("box-surfaces.tif"))
        self.assertTrue(os.path.exists(self.path("box-surfaces-surfaces.tif")))
        self.succeed("box-surfaces.tif", "--format", "nii", "-o", "tif")
        self.succeed("box-surfaces.nii", "--format", "nii", "-o", "nii")
        self.assertEqual(*(read_nifti(self.path(folder, "box-surfaces-surfaces.nii"))[0] for folder in ("tif", "nii")))

    def test_failures_leave_nothing(self):
        self.refuse_taken_names("box-surfaces.nii.gz", "box-surfaces-slices.png", "box-surfaces-projections.png",
                                source="box.nii.gz")
        self.refuse(1, ["'discs.v1.png'", "single slice", "edges"], "discs.v1.png")
        self.refuse(1, ["'missing.nii'"], "missing.nii")
        for option, values in {"--sigma": ["0", "nan"], "--sigma-z": ["0", "x"], "--low": ["-1"], "--format": ["png"]}.items():
            for value in values:
                self.refuse(2, [option, value], "box.nii.gz", option + "=" + value)
        self.refuse(2, ["--low", "--high"], "box.nii.gz", "--low", "9", "--high", "3")

    def test_interruption_leaves_nothing(self):
        with open(self.path("zeros.bin"), "wb") as file:
            file.truncate(200 ** 3)
        before = self.contents()
        slow = [self.program, "zeros.bin", "--raw-size", "200x200x200", "--sigma", "40", "--threads", "1",
                "--instruction-set", "generic"]  # some seconds
        for sent in (signal.SIGINT, signal.SIGTERM):
            with subprocess.Popen(slow, cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL)) as process:
                time.sleep(0.5)
                process.send_signal(sent)
                self.assertEqual((b"", b""), process.communicate())
            self.assertEqual(-sent, process.returncode)
            self.assertTrue(before == self.contents())


if __name__ == "__main__":
    SurfacesProgramTest.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
